#pragma once

#include "collect/LogFiles.h"
#include "model/UsageEvent.h"

#include <vector>

class QTimeZone;

namespace tallyglass::test {

/// Reads a log file the slow and obvious way: whole, decoded, split, every line parsed. The fast
/// reader must give the same events.
std::vector<UsageEvent> readPlainly(const LogFile &file, const QTimeZone &zone);

} // namespace tallyglass::test
