#pragma once

#include "app/CommandLine.h"
#include "model/Instant.h"

namespace tallyglass {

/// Prints the two ways of counting beside each other, why they differ, and what was not read. Gives
/// the program's exit status.
int runAudit(const command::Audit &options, Instant now);

} // namespace tallyglass
