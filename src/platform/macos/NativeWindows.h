#pragma once

#include <QGuiApplication>

namespace tallyglass {

/// Whether windows are the system's own. Else they are drawn into memory, as in tests, and their
/// numbers stand for no view of the system's.
inline bool drawsNatively()
{
    return QGuiApplication::platformName() == QLatin1String("cocoa");
}

} // namespace tallyglass
