#pragma once

#include "model/UsageSnapshot.h"

#include <QString>

#include <optional>
#include <span>

namespace tallyglass {

/// How a table may look; the default is for files and pipes.
struct TableStyle
{
    bool hasColours = false;
    std::optional<int> width; ///< columns of the terminal, to which lines are cut
};

/// The windows as a table for people, each with a line for every provider.
QString reportTable(std::span<const WindowUsageSummary> windows, Instant now,
                    const TableStyle &style);

} // namespace tallyglass
