#pragma once

#include <QString>

namespace tallyglass {

/// The facts of the machine and of the running program that others are computed from.
struct Host
{
    QString homeFolder;
    QString bundleIdentifier; ///< empty when the program runs without a bundle
};

} // namespace tallyglass
