#include "model/SnapshotBuilder.h"

#include <algorithm>
#include <tuple>

namespace tallyglass {

void SnapshotBuilder::Tally::add(const Tally &other)
{
    tokens = tokens + other.tokens;
    eventCount += other.eventCount;
}

void SnapshotBuilder::LimitChoice::offer(Slot slot, const DatedLimit &candidate)
{
    auto &held = slots[slot];
    if (!held
        || std::tie(candidate.date, candidate.fileOrder) >= std::tie(held->date, held->fileOrder))
        held = candidate;
}

std::optional<RateLimitUsage> SnapshotBuilder::LimitChoice::best() const
{
    for (const auto &slot : slots) {
        if (slot)
            return slot->limit;
    }
    return std::nullopt;
}

SnapshotBuilder::SnapshotBuilder(Instant now, const QTimeZone &zone)
    : m_now(now)
{
    for (std::size_t window = 0; window < allWindowKinds.size(); ++window)
        m_intervals[window] = interval(allWindowKinds[window], now, zone);
}

void SnapshotBuilder::add(const UsageEvent &event, std::size_t fileOrder)
{
    addTokens(event.provider, event.date, event.model, event.usage);
    if (!event.rateLimits.empty())
        addLimits(event, fileOrder);
}

void SnapshotBuilder::addTokens(UsageProvider provider, Instant date,
                                const std::optional<QString> &model, const TokenUsage &usage)
{
    const auto counts = [&](const WindowInterval &span) { return span.contains(date); };
    if (std::ranges::none_of(m_intervals, counts))
        return;

    ProviderTotals &totals = m_providers[static_cast<std::size_t>(provider)];
    // One look-up serves all windows.
    PerWindow<Tally> *ofModel = model ? &totals.models[*model] : nullptr;
    const Tally tally{.tokens = usage, .eventCount = 1};

    for (std::size_t window = 0; window < m_intervals.size(); ++window) {
        if (!counts(m_intervals[window]))
            continue;
        totals.all[window].add(tally);
        if (ofModel)
            (*ofModel)[window].add(tally);
    }
}

void SnapshotBuilder::addLimits(const UsageEvent &event, std::size_t fileOrder)
{
    ProviderTotals &totals = m_providers[static_cast<std::size_t>(event.provider)];
    for (std::size_t window = 0; window < m_intervals.size(); ++window) {
        if (!m_intervals[window].contains(event.date))
            continue;
        for (const RateLimitUsage &limit : event.rateLimits) {
            const bool isOpen = !limit.windowMinutes.has_value();
            if (!isOpen && limit.windowMinutes != factsOf(allWindowKinds[window]).limitMinutes)
                continue;
            const DatedLimit dated{.date = event.date, .fileOrder = fileOrder, .limit = limit};
            LimitChoice &choice = totals.limits[window];
            choice.offer(isOpen ? LimitChoice::OpenAny : LimitChoice::ExactAny, dated);
            if (limit.isPercentKnown())
                choice.offer(isOpen ? LimitChoice::OpenKnown : LimitChoice::ExactKnown, dated);
        }
    }
}

void SnapshotBuilder::merge(const SnapshotBuilder &other)
{
    for (std::size_t provider = 0; provider < m_providers.size(); ++provider) {
        ProviderTotals &mine = m_providers[provider];
        const ProviderTotals &theirs = other.m_providers[provider];
        for (std::size_t window = 0; window < m_intervals.size(); ++window) {
            mine.all[window].add(theirs.all[window]);
            for (std::uint8_t slot = 0; slot < LimitChoice::SlotCount; ++slot) {
                if (const auto &limit = theirs.limits[window].slots[slot])
                    mine.limits[window].offer(LimitChoice::Slot{slot}, *limit);
            }
        }
        for (const auto &[name, tallies] : theirs.models) {
            PerWindow<Tally> &model = mine.models[name];
            for (std::size_t window = 0; window < tallies.size(); ++window)
                model[window].add(tallies[window]);
        }
    }
}

UsageSnapshot SnapshotBuilder::build(const UsageBudgets &budgets) const
{
    UsageSnapshot snapshot{.generatedAt = m_now};
    for (std::size_t window = 0; window < m_intervals.size(); ++window) {
        WindowUsageSummary summary{.window = allWindowKinds[window],
                                   .startDate = m_intervals[window].start,
                                   .endDate = m_intervals[window].end};
        for (const UsageProvider provider : allProviders)
            summary.providers.push_back(summarise(provider, window, budgets));
        snapshot.summaries.push_back(std::move(summary));
    }
    return snapshot;
}

ProviderUsageSummary SnapshotBuilder::summarise(UsageProvider provider, std::size_t window,
                                                const UsageBudgets &budgets) const
{
    const ProviderTotals &totals = m_providers[static_cast<std::size_t>(provider)];
    ProviderUsageSummary summary{
        .provider = provider,
        .tokens = totals.all[window].tokens,
        .eventCount = totals.all[window].eventCount,
        .budgetTokens = budgets.budget(provider, allWindowKinds[window]),
        .rateLimit = totals.limits[window].best(),
    };
    for (const auto &[name, tallies] : totals.models) {
        if (const Tally &tally = tallies[window]; tally.eventCount > 0)
            summary.models.push_back(
                {.model = name, .tokens = tally.tokens, .eventCount = tally.eventCount});
    }
    std::ranges::sort(summary.models, [](const ModelUsageSummary &a, const ModelUsageSummary &b) {
        const auto totalA = a.tokens.totalTokens();
        const auto totalB = b.tokens.totalTokens();
        return totalA != totalB ? totalA > totalB : a.model < b.model;
    });
    return summary;
}

} // namespace tallyglass
