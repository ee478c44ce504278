#pragma once

#include "model/Instant.h"

#include <QString>

#include <cstdint>

class QTimeZone;

namespace tallyglass {

/// Writes a fraction as a whole percentage: 0.1201 is "13%", above 9.99 is "999%+".
///
/// Rounds up, so that a sliver of use already shows. Below 0 counts as 0. A value that is not
/// finite stops the program.
QString formatPercent(double fraction);

/// "999", "2K", "2.3M". Below 1,000, negative counts included, in full.
QString formatTokenCount(std::int64_t count);

/// "あと2時間10分": days and hours, hours and minutes, or minutes, at least one.
QString formatResetCountdown(Instant resetDate, Instant now);

/// The largest unit alone, for small gauges: "3d", "5h", "1m". Not localised, at least "1m".
QString formatCompactCountdown(Instant resetDate, Instant now);

/// "12分前": the largest unit alone, of what lies in the past.
QString formatAge(Instant date, Instant now);

/// The time of day in the user's short form, without the date.
QString formatClockTime(Instant date, const QTimeZone &zone);

} // namespace tallyglass
