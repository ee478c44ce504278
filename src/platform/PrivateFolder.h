#pragma once

#include <QString>

namespace tallyglass {

/// Makes a folder, and those above it that are missing, for the user alone. When it fails, errno
/// says why.
bool makePrivateFolder(const QString &path);

} // namespace tallyglass
