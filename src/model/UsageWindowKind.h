#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace tallyglass {

/// The time windows over which usage is summed. The value is the index into per-window arrays.
enum class UsageWindowKind : std::uint8_t { FiveHours, Hour, Day, Week, Month };

inline constexpr std::array allWindowKinds{UsageWindowKind::FiveHours, UsageWindowKind::Hour,
                                           UsageWindowKind::Day, UsageWindowKind::Week,
                                           UsageWindowKind::Month};

/// The name in files, settings and on the command line: "fiveHours", "hour", …
QLatin1String rawValue(UsageWindowKind kind);
std::optional<UsageWindowKind> windowKindFromRawValue(QStringView raw);

QString shortLabel(UsageWindowKind kind);

/// Length in minutes by which a reported limit is matched to a window; a month matches none.
std::optional<std::int64_t> limitMinutes(UsageWindowKind kind);

} // namespace tallyglass
