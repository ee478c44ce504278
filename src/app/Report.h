#pragma once

#include "app/CommandLine.h"
#include "model/Instant.h"

namespace tallyglass {

/// Collects once and prints the result to standard output. Gives the program's exit status.
int runReport(const command::Report &options, Instant now);

} // namespace tallyglass
