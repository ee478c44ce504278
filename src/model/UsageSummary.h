#pragma once

#include "model/Instant.h"
#include "model/RateLimitUsage.h"
#include "model/TokenUsage.h"
#include "model/UsageProvider.h"
#include "model/UsageWindowKind.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace tallyglass {

/// One model's part of a provider's usage in one window.
struct ModelUsageSummary
{
    QString model;
    TokenUsage tokens;
    std::int64_t eventCount = 0;

    bool operator==(const ModelUsageSummary &) const = default;
};

/// One provider's usage in one window.
struct ProviderUsageSummary
{
    UsageProvider provider = UsageProvider::Codex;
    TokenUsage tokens;
    std::int64_t eventCount = 0;
    std::int64_t budgetTokens = 0; ///< below 1: no estimate is made
    std::vector<ModelUsageSummary> models; ///< most tokens first, equal ones by name
    std::optional<RateLimitUsage> rateLimit;

    bool operator==(const ProviderUsageSummary &) const = default;

    /// Fraction of the allowance used, not clamped; an estimate from the budget may exceed 1.0.
    double percent() const;
    /// "42%" as reported, "~42%" as estimated, "--" without either.
    QString percentText() const;
    bool hasActivity() const;
};

/// All providers' usage in one window.
struct WindowUsageSummary
{
    UsageWindowKind window = UsageWindowKind::FiveHours;
    Instant startDate;
    Instant endDate;
    std::vector<ProviderUsageSummary> providers; ///< one each, in the order of allProviders

    bool operator==(const WindowUsageSummary &) const = default;

    std::vector<ProviderUsageSummary> activeProviders() const;
    /// The provider's entry; an empty one when the window has none.
    ProviderUsageSummary summary(UsageProvider provider) const;
};

} // namespace tallyglass
