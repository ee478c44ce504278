#pragma once

#include <string>

namespace tallyglass {

/// Whether a Codex session file says in its first line that the thread was forked from another one,
/// or is a sub-agent of one. Some versions begin such a file with what the other thread did.
bool isForkedThread(const std::string &path);

} // namespace tallyglass
