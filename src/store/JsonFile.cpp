#include "store/JsonFile.h"

#include "platform/Folders.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <unistd.h>

namespace tallyglass {

namespace {

constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

bool writeWhole(QFile &file, const QByteArray &content)
{
    return file.setPermissions(ownerOnly) && file.write(content) == content.size() && file.flush()
        && file.size() == content.size() && fsync(file.handle()) == 0;
}

} // namespace

std::optional<QJsonDocument> readJsonFile(const QString &path)
{
    constexpr qint64 largestSize = 64LL * 1024 * 1024; // bytes; our own files stay far below
    // Looked at before it is opened: opening a pipe would wait for somebody to write to it.
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || info.size() > largestSize || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll());
    return document.isNull() ? std::nullopt : std::optional{document};
}

bool writeFileAtomically(const QString &path, const QByteArray &content)
{
    if (!makePrivateFolder(QFileInfo(path).path()))
        return false;

    // Always the same name: after any number of kills before the renaming one file is left at most.
    const QString unfinishedPath = path + QStringLiteral(".unfinished");
    QFile::remove(unfinishedPath);
    QFile unfinished(unfinishedPath);
    if (!unfinished.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    const bool isWritten = writeWhole(unfinished, content);
    unfinished.close();
    if (isWritten
        && std::rename(QFile::encodeName(unfinishedPath).constData(),
                       QFile::encodeName(path).constData())
            == 0)
        return true;
    unfinished.remove();
    return false;
}

} // namespace tallyglass
