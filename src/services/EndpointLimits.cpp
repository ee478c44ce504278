#include "services/EndpointLimits.h"

#include <algorithm>

namespace tallyglass {

UsageSnapshot withEndpointLimits(UsageSnapshot snapshot, std::span<const RateLimitUsage> limits)
{
    for (WindowUsageSummary &window : snapshot.summaries) {
        const auto minutes = factsOf(window.window).limitMinutes;
        const auto limit = std::ranges::find_if(limits, [&](const RateLimitUsage &candidate) {
            return minutes && candidate.windowMinutes == minutes;
        });
        if (limit == limits.end())
            continue;
        for (ProviderUsageSummary &provider : window.providers) {
            if (provider.provider != UsageProvider::Claude)
                continue;
            const auto plan = provider.rateLimit ? provider.rateLimit->planType : std::nullopt;
            provider.rateLimit = *limit;
            provider.rateLimit->planType = plan;
        }
    }
    return snapshot;
}

} // namespace tallyglass
