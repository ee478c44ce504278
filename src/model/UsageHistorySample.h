#pragma once

#include "model/Instant.h"
#include "model/UsageProvider.h"

#include <QUuid>

#include <cstdint>

namespace tallyglass {

/// One point of one provider in the history.
struct UsageHistorySample
{
    QUuid id; ///< tells samples apart in lists
    Instant date;
    UsageProvider provider = UsageProvider::Codex;
    double fiveHourPercent = 0; ///< fraction of the five-hour window, 0 to 1
    double weekPercent = 0; ///< fraction of the week, 0 to 1
    std::int64_t totalTokens = 0; ///< in the five-hour window

    bool operator==(const UsageHistorySample &) const = default;
};

} // namespace tallyglass
