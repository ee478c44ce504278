#include "ui/BudgetField.h"

#include "store/BudgetsFile.h"

#include <QLocale>

#include <algorithm>
#include <optional>

namespace tallyglass {

namespace {

constexpr std::int64_t largestBudget = 999'999'999'999; // tokens; what the field can show

/// A whole number as people write it: with or without separators, in digits of any width.
std::optional<std::int64_t> wholeNumber(const QString &written)
{
    static const auto minusSigns = QStringLiteral("-\u2212\uFF0D");
    static const auto separators = QStringLiteral(",_'.\u2019\u3001\uFF0C");
    const QString trimmed = written.trimmed();
    const bool isNegative = !trimmed.isEmpty() && minusSigns.contains(trimmed.front());
    std::optional<std::int64_t> number;
    for (const QChar character : QStringView(trimmed).mid(isNegative ? 1 : 0)) {
        if (character.isDigit()) {
            number = number.value_or(0) * 10 + character.digitValue();
            if (*number > largestBudget)
                return std::nullopt;
        } else if (!separators.contains(character) && !character.isSpace()) {
            return std::nullopt;
        }
    }
    return number && isNegative ? -*number : number;
}

} // namespace

BudgetField::BudgetField(StorageLocations locations, UsageProvider provider, UsageWindowKind window,
                         QObject *parent)
    : QObject(parent)
    , m_locations(std::move(locations))
    , m_provider(provider)
    , m_window(window)
{
    reload();
}

QString BudgetField::name() const
{
    return displayName(m_provider) + u' ' + shortLabel(m_window);
}

void BudgetField::enter(const QString &written)
{
    if (const auto number = wholeNumber(written)) {
        UsageBudgets budgets = loadBudgets(m_locations);
        const std::int64_t tokens = std::max<std::int64_t>(*number, 0);
        if (tokens != budgets.budget(m_provider, m_window)) {
            budgets.tokenBudgets.insert_or_assign(budgetKey(m_provider, m_window), tokens);
            saveBudgets(budgets, m_locations);
        }
    }
    reload();
}

void BudgetField::reload()
{
    m_text = QLocale().toString(qint64{loadBudgets(m_locations).budget(m_provider, m_window)});
    Q_EMIT textChanged();
}

} // namespace tallyglass
