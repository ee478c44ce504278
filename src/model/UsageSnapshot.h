#pragma once

#include "model/Instant.h"
#include "model/UsageSummary.h"

#include <vector>

class QTimeZone;

namespace tallyglass {

/// One complete computed picture: what the panel shows and what the snapshot file holds.
struct UsageSnapshot
{
    Instant generatedAt;
    std::vector<WindowUsageSummary> summaries; ///< one each, in the order of allWindowKinds

    bool operator==(const UsageSnapshot &) const = default;

    /// Every window with every provider, all without usage.
    static UsageSnapshot empty(Instant now, const QTimeZone &zone);

    /// The window's entry; when the snapshot has none, that of the empty snapshot of \a now.
    WindowUsageSummary summary(UsageWindowKind kind, Instant now, const QTimeZone &zone) const;
};

} // namespace tallyglass
