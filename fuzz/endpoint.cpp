// Whatever the endpoint answers, a snapshot with its limits can be written and read again.

#include "Fuzz.h"
#include "model/UsageJson.h"
#include "services/ClaudeUsageAPI.h"
#include "services/EndpointLimits.h"

#include <QTimeZone>

using namespace tallyglass;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    const auto limits = limitsFromAnswer(QByteArray(data, static_cast<qsizetype>(size)));
    if (!limits)
        return 0;
    for (const RateLimitUsage &limit : *limits)
        require(limit.usedPercent >= 0 && limit.usedPercent <= 10, "a share is within its bounds");
    const auto snapshot = withEndpointLimits(
        UsageSnapshot::empty(fromUnixNumber(1'767'225'600), QTimeZone::utc()), *limits);
    const auto readBack = snapshotFromJson(toJson(snapshot));
    require(readBack.has_value() && toJson(*readBack) == toJson(snapshot),
            "what is written reads back");
    return 0;
}
