#pragma once

namespace tallyglass {

/// Ends the whole program with one line on standard error and exit status 70 ("internal software
/// error" in sysexits.h). For faults of ours that would otherwise become wrong figures.
[[noreturn]] void stopProgram(const char *reason);

} // namespace tallyglass
