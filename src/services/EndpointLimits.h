#pragma once

#include "model/UsageSnapshot.h"

#include <span>

namespace tallyglass {

/// The snapshot with the limits of the Claude usage endpoint in place of those that the logs gave
/// for Claude in the windows of the same length. The plan, which the endpoint does not tell, stays.
UsageSnapshot withEndpointLimits(UsageSnapshot snapshot, std::span<const RateLimitUsage> limits);

} // namespace tallyglass
