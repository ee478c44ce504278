#pragma once

#include <string>

namespace tallyglass {

/// Ends the whole program with one line on standard error and exit status 70 ("internal software
/// error" in sysexits.h). For faults of ours that would otherwise become wrong figures.
[[noreturn]] void stopProgram(const char *reason);

/// The path of the file that this thread is reading, or null. A fault names it.
extern thread_local const std::string *fileAtWork;

} // namespace tallyglass
