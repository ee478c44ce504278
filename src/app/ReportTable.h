#pragma once

#include "app/Terminal.h"
#include "model/UsageSnapshot.h"

#include <QString>

#include <span>

namespace tallyglass {

/// The windows as a table for people, each with a line for every provider.
QString reportTable(std::span<const WindowUsageSummary> windows, Instant now,
                    const TableStyle &style);

} // namespace tallyglass
