#pragma once

#include "model/UsageProvider.h"
#include "model/UsageWindowKind.h"

#include <QString>

#include <cstdint>
#include <map>

namespace tallyglass {

/// The name of one budget: "codex.fiveHours", "claude.week".
QString budgetKey(UsageProvider provider, UsageWindowKind kind);

/// Token budgets, against which usage is estimated where no limit is reported.
struct UsageBudgets
{
    std::map<QString, std::int64_t> tokenBudgets; ///< by budgetKey(); tokens, below 1: no estimate

    bool operator==(const UsageBudgets &) const = default;

    /// The budget in force: the stored one, or else the built-in figure of the same key.
    std::int64_t budget(UsageProvider provider, UsageWindowKind kind) const;
};

/// The built-in budgets: every provider and window.
const UsageBudgets &defaultBudgets();

} // namespace tallyglass
