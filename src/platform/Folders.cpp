#include "platform/Folders.h"

#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace tallyglass {

bool makePrivateFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makePrivateFolder(parent)
        && mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
}

} // namespace tallyglass
