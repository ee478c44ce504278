#pragma once

#include <QJsonDocument>
#include <QString>

#include <optional>

namespace tallyglass {

/// Reads a file that holds one JSON document. Nothing for a file that is missing, no regular file,
/// above 64 MiB or not JSON.
std::optional<QJsonDocument> readJsonFile(const QString &path);

/// Writes a file whole or not at all: on a full disk, after a crash or a kill, the old one stands.
/// The file is the user's alone (0600, in a folder of 0700 if that is missing yet). False when it
/// could not be written.
bool writeFileAtomically(const QString &path, const QByteArray &content);

} // namespace tallyglass
