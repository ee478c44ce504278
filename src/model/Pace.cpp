#include "model/Pace.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"

namespace tallyglass {

using namespace std::chrono;

std::optional<Pace> paceOf(const RateLimitUsage &limit, Instant now)
{
    constexpr std::int64_t longestWindow = 527'040; // minutes, a leap year
    if (!limit.isPercentKnown() || !limit.resetDate || now >= *limit.resetDate
        || !limit.windowMinutes || *limit.windowMinutes < 1 || *limit.windowMinutes > longestWindow)
        return std::nullopt;
    const milliseconds length = minutes{*limit.windowMinutes};
    const Instant start = *limit.resetDate - length;
    const milliseconds elapsed = now - start;
    if (elapsed * 10 < length)
        return std::nullopt;

    const double elapsedShare =
        static_cast<double>(elapsed.count()) / static_cast<double>(length.count());
    Pace pace{.atReset = limit.usedPercent / elapsedShare};
    if (limit.usedPercent < 1 && pace.atReset > 1)
        pace.usedUpAt = start
            + milliseconds{static_cast<std::int64_t>(static_cast<double>(elapsed.count())
                                                     / limit.usedPercent)};
    return pace;
}

QString paceText(const Pace &pace, Instant now)
{
    const QString share = formatPercent(pace.atReset);
    return pace.usedUpAt
        ? formatText("pace.usedUp.format", {share, formatCompactCountdown(*pace.usedUpAt, now)})
        : share;
}

} // namespace tallyglass
