#pragma once

#include "model/UsageEvent.h"
#include "model/UsageSummary.h"

#include <QString>

#include <span>
#include <string_view>

namespace tallyglass::test {

/// The date of the log files of tests.
inline constexpr Instant fileDate{std::chrono::sys_days{std::chrono::January / 1 / 2026}};

/// The instant of a date-time such as "2026-02-12T09:00:00Z".
Instant at(std::string_view isoDateTime);

// Values as short texts, which a failing comparison shows whole.

/// "2026-02-12T09:00:00.000Z"
QString toText(Instant instant);

/// "1/2/3/4", input, output, cache writes and reads; "1/2/3/4=10" with a stated total.
QString toText(const TokenUsage &usage);

/// "(0.5 300min until 2026-02-12T09:00:00.000Z plus)" without what is absent; "?" for a share that
/// is not known.
QString toText(const RateLimitUsage &limit);

/// "claude 1/2/3/4 opus at 2026-02-12T09:00:00.000Z (0.5 300min)", joined by "; ". A date that is
/// fileDate is left out.
QString toText(std::span<const UsageEvent> events);

/// "1/2/3/4 in 2 events, opus 1/2/3/4 in 1, (0.5 300min)"
QString toText(const ProviderUsageSummary &summary);

} // namespace tallyglass::test
