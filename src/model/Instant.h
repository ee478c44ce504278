#pragma once

#include <chrono>
#include <optional>

namespace tallyglass {

/// An absolute point in time, in whole milliseconds since 1970-01-01 UTC.
using Instant = std::chrono::sys_time<std::chrono::milliseconds>;

// The years 1 to 9999, for dates are written with four digits. What would lie outside is no date.
inline constexpr Instant earliestInstant{std::chrono::milliseconds{-62'135'596'800'000}};
inline constexpr Instant latestInstant{std::chrono::milliseconds{253'402'300'799'999}};

constexpr std::optional<Instant> withinYears(Instant instant)
{
    const bool isWithin = earliestInstant <= instant && instant <= latestInstant;
    return isWithin ? std::optional{instant} : std::nullopt;
}

/// Reads a finite Unix time: above ten billion in milliseconds, others in seconds. Nothing for 0,
/// for what is below, and behind the year 9999.
constexpr std::optional<Instant> fromUnixNumber(double value)
{
    constexpr double millisecondsThreshold = 1e10;
    const double milliseconds = value > millisecondsThreshold ? value : value * 1000;
    if (!(value > 0) || milliseconds > 1e15)
        return std::nullopt;
    // Half a microsecond absorbs the binary noise of decimal fractions: 1700000000.123 s is stored
    // as a little less and must not lose its last millisecond.
    const auto whole = static_cast<long long>(milliseconds + 0.0005);
    return withinYears(Instant{std::chrono::milliseconds{whole}});
}

} // namespace tallyglass
