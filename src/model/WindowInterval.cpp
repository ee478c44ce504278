#include "model/WindowInterval.h"

#include "model/LocalTime.h"

#include <QTimeZone>

#include <algorithm>

namespace tallyglass {

using namespace std::chrono;

WindowInterval interval(UsageWindowKind kind, Instant now, const QTimeZone &zone)
{
    const LocalTime local = toLocalTime(now, zone);
    const auto today = floor<days>(local);
    const WindowFacts &facts = factsOf(kind);
    switch (facts.span) {
    case WindowSpan::Rolling:
        return {.start = now - minutes{facts.limitMinutes.value_or(0)}, .end = now};
    case WindowSpan::CalendarHour: {
        // Counted by the offset of this moment, so that it is an hour long across every clock
        // change.
        const Instant start = now - (local - floor<hours>(local));
        return {.start = start, .end = start + 1h};
    }
    case WindowSpan::CalendarDay:
        return {.start = firstInstantFrom(LocalTime{today}, zone),
                .end = firstInstantFrom(LocalTime{today + days{1}}, zone)};
    case WindowSpan::CalendarMonth: {
        const year_month_day date{today};
        const auto thisMonth = date.year() / date.month();
        const auto nextMonth = thisMonth + months{1};
        return {.start = firstInstantFrom(LocalTime{local_days{thisMonth / 1}}, zone),
                .end = firstInstantFrom(LocalTime{local_days{nextMonth / 1}}, zone)};
    }
    }
    Q_UNREACHABLE();
}

Instant collectionCutoff(Instant now, const QTimeZone &zone)
{
    Instant earliest = now;
    for (const UsageWindowKind kind : allWindowKinds)
        earliest = std::min(earliest, interval(kind, now, zone).start);
    return earliest - 24h;
}

} // namespace tallyglass
