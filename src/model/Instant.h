#pragma once

#include <algorithm>
#include <chrono>

namespace tallyglass {

/// An absolute point in time, in whole milliseconds since 1970-01-01 UTC.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

/// The end of the year 9999: ISO 8601 readers know four digits, and no window reaches so far.
inline constexpr Instant latestInstant{std::chrono::milliseconds{253'402'300'799'999}};

/// Unix times above this are milliseconds, others seconds.
inline constexpr double millisecondsThreshold = 1e10;

/// Reads a Unix time of either unit. \a value must be greater than 0; what lies beyond
/// latestInstant is taken as that.
constexpr Instant fromUnixNumber(double value)
{
    const double milliseconds = value > millisecondsThreshold ? value : value * 1000;
    const double latest = static_cast<double>(latestInstant.time_since_epoch().count());
    // Half a microsecond absorbs the binary noise of decimal fractions: 1700000000.123 s is stored
    // as a little less and must not lose its last millisecond.
    return Instant{
        std::chrono::milliseconds{static_cast<long long>(std::min(milliseconds + 0.0005, latest))}};
}

} // namespace tallyglass
