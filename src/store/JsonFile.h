#pragma once

#include <QJsonDocument>
#include <QString>

#include <cstdint>
#include <optional>

namespace tallyglass {

/// Reads a JSON document of another program, through links. Nothing for a file that is missing, no
/// regular file, above 64 MiB or not JSON.
std::optional<QJsonDocument> readJsonFile(const QString &path);

enum class OwnFileState : std::uint8_t {
    Json,
    Missing,
    NotOurs, ///< a link, no regular file, above 64 MiB or not JSON
    Unreadable, ///< there may be one, which must not be replaced by what lacks its content
};

/// What stands where a file of ours is kept.
struct OwnFile
{
    OwnFileState state = OwnFileState::Missing;
    QJsonDocument document;
};

OwnFile readOwnFile(const QString &path);

/// Gives a file another name, in whose place it comes. False when it could not.
bool moveFile(const QString &from, const QString &to);

} // namespace tallyglass
