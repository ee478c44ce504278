#pragma once

#include "collect/LogFiles.h"

#include <vector>

namespace tallyglass {

/// Looks for what a reading of the file passes over without a word: nothing is found in a sound
/// one. Plain text in a file called ".log" is sound.
std::vector<PassedOverLog> checkLogFile(const LogFile &file);

} // namespace tallyglass
