#include "platform/linux/ConfigFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace tallyglass {

QString configFolder(const QString &homeFolder)
{
    const QString chosen = qEnvironmentVariable("XDG_CONFIG_HOME");
    return QDir::isAbsolutePath(chosen) ? QDir::cleanPath(chosen)
                                        : homeFolder + QStringLiteral("/.config");
}

bool makePrivateFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makePrivateFolder(parent)
        && mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
}

} // namespace tallyglass
