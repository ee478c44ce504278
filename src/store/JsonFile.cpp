#include "store/JsonFile.h"

#include "platform/Files.h"

#include <QFile>

#include <cerrno>
#include <cstdio>

namespace tallyglass {

namespace {

OwnFileState stateAfter(int failure)
{
    switch (failure) {
    case ENOENT:
    case ENOTDIR:
        return OwnFileState::Missing;
    case EFBIG:
    case EINVAL: // no regular file
    case ELOOP: // a link that is not followed
    case ENXIO: // a socket
        return OwnFileState::NotOurs;
    default:
        return OwnFileState::Unreadable;
    }
}

OwnFile readJson(const QString &path, Links links)
{
    constexpr qint64 largestSize = qint64{64} * 1024 * 1024; // bytes; our own files stay far below
    const auto content = readWholeFile(path, largestSize, links);
    if (!content)
        return {.state = stateAfter(errno)};
    QJsonDocument document = QJsonDocument::fromJson(*content);
    if (document.isNull())
        return {.state = OwnFileState::NotOurs};
    return {.state = OwnFileState::Json, .document = std::move(document)};
}

} // namespace

std::optional<QJsonDocument> readJsonFile(const QString &path)
{
    const OwnFile file = readJson(path, Links::Followed);
    return file.state == OwnFileState::Json ? std::optional{file.document} : std::nullopt;
}

OwnFile readOwnFile(const QString &path)
{
    return readJson(path, Links::Refused);
}

bool moveFile(const QString &from, const QString &to)
{
    // The system's own call, which replaces what has that name.
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace tallyglass
