#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>

/// Files and folders, as far as Qt's own ways are not safe enough. What fails leaves its reason in
/// errno.
namespace tallyglass {

enum class Links : std::uint8_t { Followed, Refused };

/// The content of a regular file of at most \a largest bytes, without ever waiting for somebody who
/// writes. Reasons of its own: EINVAL for what is no regular file, EFBIG for a larger one, ELOOP
/// for a link that is refused.
std::optional<QByteArray> readWholeFile(const QString &path, qint64 largest,
                                        Links links = Links::Followed);

/// Writes a file whole or not at all: on a full disk, after a crash or a kill, the old one stands.
/// The file is the user's alone (0600, in a folder of 0700 if that is missing yet).
bool writeFileAtomically(const QString &path, const QByteArray &content);

/// Makes a folder, and those above it that are missing, for the user alone.
bool makePrivateFolder(const QString &path);

/// Whether a folder is one thing to its user, such as an application: by its name, or because the
/// system says so. \a path is in the file system's encoding.
bool isPackage(const std::string &path);
bool hasPackageExtension(const std::string &path);

} // namespace tallyglass
