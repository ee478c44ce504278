#pragma once

#include "app/CommandLine.h"
#include "model/Instant.h"

namespace tallyglass {

/// Prints where the figures of one window come from: each record with its file and line, and the
/// readings of the limit. Gives the program's exit status.
int runExplain(const command::Explain &options, Instant now);

} // namespace tallyglass
