#include "model/UsageBudgets.h"

namespace tallyglass {

namespace {

std::int64_t builtInBudget(UsageWindowKind kind)
{
    switch (kind) {
    case UsageWindowKind::FiveHours:
        return 1'250'000;
    case UsageWindowKind::Hour:
        return 250'000;
    case UsageWindowKind::Day:
        return 1'000'000;
    case UsageWindowKind::Week:
        return 5'000'000;
    case UsageWindowKind::Month:
        return 20'000'000;
    }
    Q_UNREACHABLE();
}

UsageBudgets makeDefaultBudgets()
{
    UsageBudgets budgets;
    for (const UsageProvider provider : allProviders) {
        for (const UsageWindowKind kind : allWindowKinds)
            budgets.tokenBudgets.emplace(budgetKey(provider, kind), builtInBudget(kind));
    }
    return budgets;
}

} // namespace

QString budgetKey(UsageProvider provider, UsageWindowKind kind)
{
    return rawValue(provider) + u'.' + rawValue(kind);
}

std::int64_t UsageBudgets::budget(UsageProvider provider, UsageWindowKind kind) const
{
    const auto stored = tokenBudgets.find(budgetKey(provider, kind));
    return stored != tokenBudgets.end() ? stored->second : builtInBudget(kind);
}

const UsageBudgets &defaultBudgets()
{
    static const UsageBudgets budgets = makeDefaultBudgets();
    return budgets;
}

} // namespace tallyglass
