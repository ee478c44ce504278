#pragma once

#include "model/UsageSnapshot.h"

#include <QString>

#include <limits>
#include <span>

namespace tallyglass {

/// How a table may look; the default is for files and pipes.
struct TableStyle
{
    bool hasColours = false;
    int width = std::numeric_limits<int>::max(); ///< columns of the terminal, which lines keep to
};

/// The windows as a table for people, each with a line for every provider.
QString reportTable(std::span<const WindowUsageSummary> windows, Instant now,
                    const TableStyle &style);

} // namespace tallyglass
