#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageSnapshot.h"
#include "store/StorageLocations.h"

#include <vector>

namespace tallyglass {

/// The stored samples, oldest first, from the first location that has a readable file.
std::vector<UsageHistorySample> loadHistory(const StorageLocations &locations);

/// Adds one sample for each provider with activity, unless the newest one is less than ten minutes
/// old; then nothing is added or written. Samples above 30 days are dropped. Gives the whole
/// history, also when it could not be written.
std::vector<UsageHistorySample> recordHistory(const UsageSnapshot &snapshot, Instant now,
                                              const QTimeZone &zone,
                                              const StorageLocations &locations);

} // namespace tallyglass
