#include "model/UsageBudgets.h"

namespace tallyglass {

namespace {

UsageBudgets makeDefaultBudgets()
{
    UsageBudgets budgets;
    for (const UsageProvider provider : allProviders) {
        for (const UsageWindowKind kind : allWindowKinds)
            budgets.tokenBudgets.emplace(budgetKey(provider, kind), factsOf(kind).builtInBudget);
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
    return stored != tokenBudgets.end() ? stored->second : factsOf(kind).builtInBudget;
}

const UsageBudgets &defaultBudgets()
{
    static const UsageBudgets budgets = makeDefaultBudgets();
    return budgets;
}

} // namespace tallyglass
