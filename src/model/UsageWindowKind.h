#pragma once

#include "model/DisplayText.h"
#include "model/FewNames.h"

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace tallyglass {

/// The time windows over which usage is summed. The value is the index into per-window arrays.
enum class UsageWindowKind : std::uint8_t {
    FiveHours,
    Hour,
    Day,
    Week,
    Month,
    Count, ///< no window, but their number
};

inline constexpr auto allWindowKinds = [] {
    std::array<UsageWindowKind, static_cast<std::size_t>(UsageWindowKind::Count)> all{};
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<UsageWindowKind>(i);
    return all;
}();

/// Where a window lies.
enum class WindowSpan : std::uint8_t {
    Rolling = 1, ///< ends now and is as long as its limits
    CalendarHour,
    CalendarDay,
    CalendarMonth,
};

/// All that is known of a window. What acts on it stands elsewhere and asks for it here.
struct WindowFacts
{
    const char *rawValue = nullptr; ///< its name in files, settings and on the command line
    DisplayText shortLabel;
    DisplayText limitLabel; ///< of a reported limit as long as the window
    WindowSpan span{};
    std::optional<std::int64_t> limitMinutes; ///< length of its limits; absent: none is matched
    std::int64_t builtInBudget = 0; ///< tokens

    // What logs call a limit of this window, in lower case with "_" for blanks and hyphens.
    FewNames logNames;
    FewNames partsOfLogNames;
    int logNameTurn = 0; ///< of two windows that a name fits, the one with the lower turn is meant
};

const WindowFacts &factsOf(UsageWindowKind kind);

/// "fiveHours", "hour", …
QLatin1String rawValue(UsageWindowKind kind);
std::optional<UsageWindowKind> windowKindFromRawValue(QStringView raw);

QString shortLabel(UsageWindowKind kind);

} // namespace tallyglass
