#pragma once

#include "model/RateLimitUsage.h"

#include <QString>

#include <optional>

namespace tallyglass {

/// Where a limit ends up if its window goes on as it has gone so far.
struct Pace
{
    double atReset = 0; ///< fraction of the limit
    std::optional<Instant> usedUpAt; ///< only if that is before the reset, and still to come

    bool operator==(const Pace &) const = default;
};

/// Nothing for a limit without share, length or reset, after its reset, and in the first tenth of
/// its window, which tells too little.
std::optional<Pace> paceOf(const RateLimitUsage &limit, Instant now);

/// "131%（1hで上限）"; "93%" where the limit lasts.
QString paceText(const Pace &pace, Instant now);

} // namespace tallyglass
