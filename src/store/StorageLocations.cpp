#include "store/StorageLocations.h"

#include <QDir>

namespace tallyglass {

StorageLocations::StorageLocations(Host host)
    : m_host(std::move(host))
{
}

QString StorageLocations::applicationSupportFolder() const
{
    return m_host.homeFolder + u'/' + QLatin1String(ownFolder);
}

QString StorageLocations::widgetContainerFolder() const
{
    return m_host.homeFolder + QStringLiteral("/Library/Containers/") + widgetBundleIdentifier()
        + QStringLiteral("/Data/") + QLatin1String(ownFolder);
}

QString StorageLocations::widgetBundleIdentifier() const
{
    const QString identifier = m_host.bundleIdentifier.isEmpty()
        ? QStringLiteral("dev.local.Tallyglass")
        : m_host.bundleIdentifier;
    const QString suffix = QStringLiteral(".widget");
    return identifier.endsWith(suffix) ? identifier : identifier + suffix;
}

QStringList StorageLocations::writingPaths(const QString &fileName) const
{
    // Inside the widget's sandbox the home folder is that of the container already.
    if (m_host.bundleIdentifier == widgetBundleIdentifier())
        return {QDir::cleanPath(applicationSupportFolder() + u'/' + fileName)};
    return readingPaths(fileName);
}

QStringList StorageLocations::readingPaths(const QString &fileName) const
{
    QStringList paths{QDir::cleanPath(applicationSupportFolder() + u'/' + fileName),
                      QDir::cleanPath(widgetContainerFolder() + u'/' + fileName)};
    paths.removeDuplicates();
    return paths;
}

} // namespace tallyglass
