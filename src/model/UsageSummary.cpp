#include "model/UsageSummary.h"

#include "model/Formatting.h"

#include <algorithm>

namespace tallyglass {

namespace {

/// The limit whose percentage the provider vouches for, or null.
const RateLimitUsage *authoritativeLimit(const ProviderUsageSummary &summary)
{
    const auto &limit = summary.rateLimit;
    return limit && limit->isPercentKnown() ? &*limit : nullptr;
}

} // namespace

double ProviderUsageSummary::percent() const
{
    if (const RateLimitUsage *limit = authoritativeLimit(*this))
        return limit->usedPercent;
    if (budgetTokens < 1)
        return 0;
    return static_cast<double>(tokens.totalTokens()) / static_cast<double>(budgetTokens);
}

QString ProviderUsageSummary::percentText() const
{
    if (authoritativeLimit(*this))
        return formatPercent(percent());
    return budgetTokens < 1 ? QStringLiteral("--") : u'~' + formatPercent(percent());
}

bool ProviderUsageSummary::hasActivity() const
{
    return tokens.totalTokens() > 0 || eventCount > 0 || rateLimit.has_value();
}

std::vector<ProviderUsageSummary> WindowUsageSummary::activeProviders() const
{
    std::vector<ProviderUsageSummary> active;
    std::ranges::copy_if(providers, std::back_inserter(active), &ProviderUsageSummary::hasActivity);
    return active;
}

ProviderUsageSummary WindowUsageSummary::summary(UsageProvider provider) const
{
    const auto found = std::ranges::find(providers, provider, &ProviderUsageSummary::provider);
    return found != providers.end() ? *found : ProviderUsageSummary{.provider = provider};
}

} // namespace tallyglass
