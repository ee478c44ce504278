#include "model/UsageWindowKind.h"

#include "model/DisplayTexts.h"

#include <algorithm>

namespace tallyglass {

namespace {

constexpr std::array<WindowFacts, allWindowKinds.size()> table{{
    {
        .rawValue = "fiveHours",
        .shortLabel = {"window.short.fiveHours", "5h"},
        .limitLabel = {"window.short.fiveHours", "5h"},
        .span = WindowSpan::Rolling,
        .limitMinutes = 300,
        .builtInBudget = 1'250'000,
        .partsOfLogNames = {"5h", "5_hour", "five_hour"},
        .logNameTurn = 1, // Before the hour, so that "15h" is not taken for one.
    },
    {
        .rawValue = "hour",
        .shortLabel = {"window.short.hour", "1h"},
        .limitLabel = {"window.short.hour", "1h"},
        .span = WindowSpan::CalendarHour,
        .limitMinutes = 60,
        .builtInBudget = 250'000,
        .logNames = {"hour"},
        .partsOfLogNames = {"1h", "1_hour"},
        .logNameTurn = 3,
    },
    {
        .rawValue = "day",
        .shortLabel = {"window.short.day", "日"},
        .limitLabel = {"window.short.day", "日"},
        .span = WindowSpan::CalendarDay,
        .limitMinutes = 1'440,
        .builtInBudget = 1'000'000,
        .logNames = {"day", "daily"},
        .logNameTurn = 4,
    },
    {
        .rawValue = "week",
        .shortLabel = {"window.short.week", "週"},
        .limitLabel = {"limit.window.sevenDays", "7日"},
        .span = WindowSpan::Rolling,
        .limitMinutes = 10'080,
        .builtInBudget = 5'000'000,
        .partsOfLogNames = {"7d", "7_day", "seven_day", "week"},
        .logNameTurn = 2,
    },
    {
        .rawValue = "month",
        .shortLabel = {"window.short.month", "月"},
        .span = WindowSpan::CalendarMonth,
        .builtInBudget = 20'000'000,
    },
}};

static_assert(std::ranges::all_of(table,
                                  [](const WindowFacts &facts) {
                                      const bool isLimited = facts.limitMinutes.has_value();
                                      const bool isNamed = !facts.logNames.isEmpty()
                                          || !facts.partsOfLogNames.isEmpty();
                                      return facts.rawValue && facts.shortLabel.key
                                          && facts.span != WindowSpan{} && facts.builtInBudget > 0
                                          && isNamed == isLimited
                                          && (facts.limitLabel.key != nullptr) == isLimited
                                          && (facts.logNameTurn > 0) == isLimited
                                          && (isLimited || facts.span != WindowSpan::Rolling);
                                  }),
              "a window lacks its row, or the row a fact");

} // namespace

const WindowFacts &factsOf(UsageWindowKind kind)
{
    return table[static_cast<std::size_t>(kind)];
}

QLatin1String rawValue(UsageWindowKind kind)
{
    return QLatin1String(factsOf(kind).rawValue);
}

std::optional<UsageWindowKind> windowKindFromRawValue(QStringView raw)
{
    for (const UsageWindowKind kind : allWindowKinds) {
        if (raw == rawValue(kind))
            return kind;
    }
    return std::nullopt;
}

QString shortLabel(UsageWindowKind kind)
{
    return displayText(factsOf(kind).shortLabel);
}

} // namespace tallyglass
