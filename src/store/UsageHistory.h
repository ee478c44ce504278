#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageSnapshot.h"
#include "store/StorageLocations.h"

#include <vector>

namespace tallyglass {

/// The stored samples, oldest first, from the first location that has a readable file.
std::vector<UsageHistorySample> loadHistory(const StorageLocations &locations);

/// Adds one sample for each provider with activity, unless the newest one is less than ten minutes
/// old; then nothing is added or written. Samples above 30 days are dropped. Nothing is written
/// while a file cannot be read, for a shorter history would replace it. Gives the whole history,
/// also when it was not written.
std::vector<UsageHistorySample> recordHistory(const UsageSnapshot &snapshot, Instant now,
                                              const QTimeZone &zone,
                                              const StorageLocations &locations);

} // namespace tallyglass
