#include "model/LocalTime.h"

#include <QDateTime>
#include <QTimeZone>

#include <vector>

namespace tallyglass {

using namespace std::chrono;

namespace {

QDateTime toDateTime(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count(), Qt::UTC);
}

Instant toInstant(const QDateTime &dateTime)
{
    return Instant{milliseconds{dateTime.toMSecsSinceEpoch()}};
}

seconds offsetAt(Instant instant, const QTimeZone &zone)
{
    return seconds{zone.offsetFromUtc(toDateTime(instant))};
}

LocalTime shifted(Instant instant, seconds offset)
{
    return LocalTime{instant.time_since_epoch() + offset};
}

Instant unshifted(LocalTime time, seconds offset)
{
    return Instant{time.time_since_epoch() - offset};
}

/// A stretch of time with one offset from UTC.
struct OffsetSpan
{
    Instant start;
    Instant end;
    seconds offset;
};

/// The spans in which a clock can show \a time, in order. Offsets stay within 16 hours.
std::vector<OffsetSpan> offsetSpansAround(LocalTime time, const QTimeZone &zone)
{
    const Instant earliest = unshifted(time, 16h);
    const Instant latest = unshifted(time, -16h);
    std::vector<OffsetSpan> spans{
        {.start = earliest, .end = latest, .offset = offsetAt(earliest, zone)}};
    for (const auto &change : zone.transitions(toDateTime(earliest), toDateTime(latest))) {
        const Instant at = toInstant(change.atUtc);
        spans.back().end = at;
        spans.push_back({.start = at, .end = latest, .offset = seconds{change.offsetFromUtc}});
    }
    return spans;
}

/// The first instant at which the clock showed \a time or had gone past it.
struct Reached
{
    Instant instant;
    bool isShown = false;
};

Reached reach(LocalTime time, const QTimeZone &zone)
{
    const auto spans = offsetSpansAround(time, zone);
    for (const OffsetSpan &span : spans) {
        const Instant candidate = unshifted(time, span.offset);
        if (candidate < span.start)
            return {.instant = span.start};
        if (candidate < span.end)
            return {.instant = candidate, .isShown = true};
    }
    return {.instant = spans.back().end};
}

} // namespace

LocalTime toLocalTime(Instant instant, const QTimeZone &zone)
{
    return shifted(instant, offsetAt(instant, zone));
}

std::optional<Instant> instantShowing(LocalTime time, const QTimeZone &zone)
{
    const Reached reached = reach(time, zone);
    return reached.isShown ? std::optional{reached.instant} : std::nullopt;
}

Instant firstInstantFrom(LocalTime time, const QTimeZone &zone)
{
    return reach(time, zone).instant;
}

} // namespace tallyglass
