#pragma once

#include "model/Instant.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace tallyglass {

/// A limit that the provider itself reports, never an estimate.
struct RateLimitUsage
{
    double usedPercent = 0; ///< fraction, 1.0 is the whole limit
    std::optional<Instant> resetDate;
    std::optional<std::int64_t> windowMinutes; ///< its length, as that of a window or any other
    std::optional<QString> planType; ///< the account's plan, as reported
    std::optional<bool> percentKnown; ///< absent counts as true; false: usedPercent says nothing

    bool operator==(const RateLimitUsage &) const = default;

    bool isPercentKnown() const { return percentKnown.value_or(true); }
    /// The window's length as a short label: "5h", "7日", "2日", "90分".
    QString windowLabel() const;
    /// "Pro", "Team", …; absent when the provider reports no plan.
    std::optional<QString> planDisplayName() const;
};

} // namespace tallyglass
