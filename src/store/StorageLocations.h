#pragma once

#include "platform/Host.h"

#include <QStringList>

namespace tallyglass {

/// Where the program keeps its files, the same on every system, and where its home-screen widget
/// can read them. Asking creates nothing.
class StorageLocations
{
public:
    explicit StorageLocations(Host host);

    /// "~/Library/Application Support/Tallyglass"
    QString applicationSupportFolder() const;
    /// The same folder inside the container to which the system confines the widget.
    QString widgetContainerFolder() const;
    QString widgetBundleIdentifier() const;

    /// Where a file that the widget reads too is written: one location inside the widget, else
    /// both.
    QStringList writingPaths(const QString &fileName) const;
    /// Where it is read from, in order.
    QStringList readingPaths(const QString &fileName) const;

private:
    Host m_host;
};

} // namespace tallyglass
