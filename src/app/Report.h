#pragma once

#include "app/CommandLine.h"
#include "model/Instant.h"
#include "platform/Host.h"

namespace tallyglass {

/// Collects once and prints the result to standard output. Gives the program's exit status.
int runReport(const command::Report &options, const Host &host, Instant now);

} // namespace tallyglass
