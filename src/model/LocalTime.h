#pragma once

#include "model/Instant.h"

#include <optional>

class QTimeZone;

namespace tallyglass {

/// What a wall clock shows, without its zone: milliseconds since the reading 1970-01-01 00:00.
using LocalTime = std::chrono::local_time<std::chrono::milliseconds>;

LocalTime toLocalTime(Instant instant, const QTimeZone &zone);

/// When a clock in \a zone showed \a time: the first time, where a clock change repeats it; nothing
/// where one skips it, and outside the years 1 to 9999 in UTC.
std::optional<Instant> instantShowing(LocalTime time, const QTimeZone &zone);

/// The first instant at which a clock in \a zone showed \a time, or had jumped over it.
Instant firstInstantFrom(LocalTime time, const QTimeZone &zone);

} // namespace tallyglass
