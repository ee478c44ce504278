#include "model/UsageSnapshot.h"

#include "model/WindowInterval.h"

#include <algorithm>

namespace tallyglass {

namespace {

WindowUsageSummary emptyWindow(UsageWindowKind kind, Instant now, const QTimeZone &zone)
{
    const WindowInterval span = interval(kind, now, zone);
    WindowUsageSummary summary{.window = kind, .startDate = span.start, .endDate = span.end};
    for (const UsageProvider provider : allProviders)
        summary.providers.push_back({.provider = provider});
    return summary;
}

} // namespace

UsageSnapshot UsageSnapshot::empty(Instant now, const QTimeZone &zone)
{
    UsageSnapshot snapshot{.generatedAt = now};
    for (const UsageWindowKind kind : allWindowKinds)
        snapshot.summaries.push_back(emptyWindow(kind, now, zone));
    return snapshot;
}

WindowUsageSummary UsageSnapshot::summary(UsageWindowKind kind, Instant now,
                                          const QTimeZone &zone) const
{
    const auto found = std::ranges::find(summaries, kind, &WindowUsageSummary::window);
    return found != summaries.end() ? *found : emptyWindow(kind, now, zone);
}

} // namespace tallyglass
