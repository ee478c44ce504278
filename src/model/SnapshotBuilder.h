#pragma once

#include "model/UsageBudgets.h"
#include "model/UsageEvent.h"
#include "model/UsageSnapshot.h"
#include "model/WindowInterval.h"

#include <QHashFunctions>

#include <array>
#include <cstddef>
#include <optional>
#include <unordered_map>

namespace tallyglass {

/// Folds usage events into the windows of one snapshot, so that no list of events is ever held.
///
/// Several builders of the same \c now and zone can share the work and be merged; neither the order
/// of the events nor their split changes the result.
class SnapshotBuilder
{
public:
    SnapshotBuilder(Instant now, const QTimeZone &zone);

    /// \a fileOrder is the index of the event's file in the order of reading: of two limits with
    /// the same date the one read later holds. The events of one file must come in their order.
    void add(const UsageEvent &event, std::size_t fileOrder);
    // The two parts of add().
    void addTokens(UsageProvider provider, Instant date, const std::optional<QString> &model,
                   const TokenUsage &usage);
    void addLimits(const UsageEvent &event, std::size_t fileOrder);
    void merge(const SnapshotBuilder &other);

    UsageSnapshot build(const UsageBudgets &budgets) const;

private:
    struct Tally
    {
        TokenUsage tokens;
        std::int64_t eventCount = 0;

        void add(const Tally &other);
    };

    struct DatedLimit
    {
        Instant date;
        std::size_t fileOrder = 0;
        RateLimitUsage limit;
    };

    /// The newest limit of each kind, best kind first: of the window's own length before one that
    /// states no length, and in each of these one with a known percentage before any.
    struct LimitChoice
    {
        enum Slot : std::uint8_t { ExactKnown, ExactAny, OpenKnown, OpenAny, SlotCount };
        std::array<std::optional<DatedLimit>, SlotCount> slots;

        void offer(Slot slot, const DatedLimit &candidate);
        std::optional<RateLimitUsage> best() const;
    };

    template<typename T>
    using PerWindow = std::array<T, allWindowKinds.size()>;

    struct ProviderTotals
    {
        PerWindow<Tally> all;
        PerWindow<LimitChoice> limits;
        std::unordered_map<QString, PerWindow<Tally>> models;
    };

    ProviderUsageSummary summarise(UsageProvider provider, std::size_t window,
                                   const UsageBudgets &budgets) const;

    Instant m_now;
    PerWindow<WindowInterval> m_intervals;
    std::array<ProviderTotals, allProviders.size()> m_providers;
};

} // namespace tallyglass
