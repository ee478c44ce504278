#pragma once

#include "model/UsageSummary.h"
#include "platform/Ports.h"

namespace tallyglass {

/// Notifies of each provider whose use of the five-hour window has reached the user's threshold:
/// once for each provider, reset and threshold, also across restarts.
void raiseAlerts(const WindowUsageSummary &fiveHours, UserDefaults &defaults, Notifier &notifier);

} // namespace tallyglass
