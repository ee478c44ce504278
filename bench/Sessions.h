#pragma once

#include "LogWriter.h"

namespace tallyglass::bench {

// Each writes one session of a tool in about \a size bytes: all its files, in the shapes that the
// tool gives them.

void writeClaudeSession(Workshop &workshop, std::int64_t size);
void writeCodexSession(Workshop &workshop, std::int64_t size);
void writeCopilotSession(Workshop &workshop, std::int64_t size);

} // namespace tallyglass::bench
