#pragma once

#include <QString>

#include <string>

namespace tallyglass {

/// Makes a folder, and those above it that are missing, for the user alone. When it fails, errno
/// says why.
bool makePrivateFolder(const QString &path);

/// Whether the system shows a folder as one thing, as it does with an application. \a path is in
/// the file system's encoding.
bool isPackage(const std::string &path);

} // namespace tallyglass
