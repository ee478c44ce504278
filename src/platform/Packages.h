#pragma once

#include <string>

namespace tallyglass {

/// Whether the system shows a folder as one thing, as it does with an application. \a path is in
/// the file system's encoding.
bool isPackage(const std::string &path);

} // namespace tallyglass
