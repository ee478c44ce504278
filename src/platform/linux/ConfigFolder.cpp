#include "platform/linux/ConfigFolder.h"

#include <QDir>

namespace tallyglass {

QString configFolder(const QString &homeFolder)
{
    const QString chosen = qEnvironmentVariable("XDG_CONFIG_HOME");
    return QDir::isAbsolutePath(chosen) ? QDir::cleanPath(chosen)
                                        : homeFolder + QStringLiteral("/.config");
}

} // namespace tallyglass
