#pragma once

#include "collect/NameTable.h"
#include "json/JsonValue.h"
#include "model/RateLimitUsage.h"

#include <vector>

class QTimeZone;

namespace tallyglass {

/// Whether an object is a limit: a share, a reset date or a window length above 0 can be read from
/// it. A plan or a name alone does not make one.
bool isRateLimit(const JsonValue &object, const QTimeZone &zone);

/// The limits in a record's "rate_limits" and "rate_limit_info". The search goes through arrays and
/// nested objects, and stops at each limit. The plans' names come from \a names.
std::vector<RateLimitUsage> rateLimits(const JsonValue &record, const QTimeZone &zone,
                                       NameTable &names);

} // namespace tallyglass
