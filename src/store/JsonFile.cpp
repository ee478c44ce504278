#include "store/JsonFile.h"

#include "platform/Folders.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallyglass {

namespace {

constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

OwnFileState stateAfter(int failure)
{
    switch (failure) {
    case ENOENT:
    case ENOTDIR:
        return OwnFileState::Missing;
    case ELOOP: // a link that is not followed
    case ENXIO: // a socket
        return OwnFileState::NotOurs;
    default:
        return OwnFileState::Unreadable;
    }
}

/// \a flags are more ways of opening.
OwnFile readJson(const QString &path, int flags)
{
    constexpr off_t largestSize = off_t{64} * 1024 * 1024; // bytes; our own files stay far below
    // Opening a pipe does not wait for somebody to write to it.
    const int descriptor =
        open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | flags);
    if (descriptor < 0)
        return {.state = stateAfter(errno)};
    QFile file;
    struct stat status{};
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)
        || fstat(descriptor, &status) != 0)
        return {.state = OwnFileState::Unreadable};
    if (!S_ISREG(status.st_mode) || status.st_size > largestSize)
        return {.state = OwnFileState::NotOurs};

    const QByteArray content = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return {.state = OwnFileState::Unreadable};
    QJsonDocument document = QJsonDocument::fromJson(content);
    if (document.isNull())
        return {.state = OwnFileState::NotOurs};
    return {.state = OwnFileState::Json, .document = std::move(document)};
}

/// A new file for what will replace \a path. Always the same name: after any number of kills before
/// the renaming one file is left at most. A folder of that name, which cannot be taken away, is
/// stepped around.
bool openUnfinished(QFile &file, const QString &path)
{
    for (const char *ending : {".unfinished", ".unfinished-2"}) {
        file.setFileName(path + QLatin1String(ending));
        file.remove();
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            return true;
    }
    return false;
}

bool writeWhole(QFile &file, const QByteArray &content)
{
    return file.setPermissions(ownerOnly) && file.write(content) == content.size() && file.flush()
        && file.size() == content.size() && fsync(file.handle()) == 0;
}

} // namespace

std::optional<QJsonDocument> readJsonFile(const QString &path)
{
    const OwnFile file = readJson(path, 0);
    return file.state == OwnFileState::Json ? std::optional{file.document} : std::nullopt;
}

OwnFile readOwnFile(const QString &path)
{
    return readJson(path, O_NOFOLLOW);
}

bool moveFile(const QString &from, const QString &to)
{
    // The system's own call, which replaces what has that name.
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool writeFileAtomically(const QString &path, const QByteArray &content)
{
    QFile unfinished;
    if (!makePrivateFolder(QFileInfo(path).path()) || !openUnfinished(unfinished, path))
        return false;
    const bool isWritten = writeWhole(unfinished, content);
    unfinished.close();
    if (isWritten && moveFile(unfinished.fileName(), path))
        return true;
    unfinished.remove();
    return false;
}

} // namespace tallyglass
