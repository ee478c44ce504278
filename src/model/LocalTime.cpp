#include "model/LocalTime.h"

#include <QDateTime>
#include <QTimeZone>

#include <algorithm>

namespace tallyglass {

using namespace std::chrono;

namespace {

QDateTime toDateTime(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), QTimeZone::utc());
}

seconds offsetAt(Instant instant, const QTimeZone &zone)
{
    return seconds{zone.offsetFromUtc(toDateTime(instant))};
}

Instant unshifted(LocalTime time, seconds offset)
{
    return Instant{time.time_since_epoch() - offset};
}

/// The first instant at which the clock showed \a time or had gone past it.
struct Reached
{
    Instant instant;
    bool isShown = false;
};

Reached reach(LocalTime time, const QTimeZone &zone)
{
    // Offsets stay within 16 hours. The clock has this one from here to the next change.
    Instant start = unshifted(time, 16h);
    const Instant end = unshifted(time, -16h);
    seconds offset = offsetAt(start, zone);
    for (const auto &change : zone.transitions(toDateTime(start), toDateTime(end))) {
        const Instant next{milliseconds{change.atUtc.toMSecsSinceEpoch()}};
        if (unshifted(time, offset) < next)
            break;
        start = next;
        offset = seconds{change.offsetFromUtc};
    }
    const Instant candidate = unshifted(time, offset);
    return {.instant = std::max(candidate, start), .isShown = start <= candidate};
}

} // namespace

LocalTime toLocalTime(Instant instant, const QTimeZone &zone)
{
    return LocalTime{instant.time_since_epoch() + offsetAt(instant, zone)};
}

std::optional<Instant> instantShowing(LocalTime time, const QTimeZone &zone)
{
    const Reached reached = reach(time, zone);
    return reached.isShown ? withinYears(reached.instant) : std::nullopt;
}

Instant firstInstantFrom(LocalTime time, const QTimeZone &zone)
{
    return reach(time, zone).instant;
}

} // namespace tallyglass
