#include "model/UsageWindowKind.h"

#include "model/DisplayTexts.h"

namespace tallyglass {

QLatin1String rawValue(UsageWindowKind kind)
{
    switch (kind) {
    case UsageWindowKind::FiveHours:
        return QLatin1String("fiveHours");
    case UsageWindowKind::Hour:
        return QLatin1String("hour");
    case UsageWindowKind::Day:
        return QLatin1String("day");
    case UsageWindowKind::Week:
        return QLatin1String("week");
    case UsageWindowKind::Month:
        return QLatin1String("month");
    }
    Q_UNREACHABLE();
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
    switch (kind) {
    case UsageWindowKind::FiveHours:
        return displayText("window.short.fiveHours");
    case UsageWindowKind::Hour:
        return displayText("window.short.hour");
    case UsageWindowKind::Day:
        return displayText("window.short.day");
    case UsageWindowKind::Week:
        return displayText("window.short.week");
    case UsageWindowKind::Month:
        return displayText("window.short.month");
    }
    Q_UNREACHABLE();
}

std::optional<std::int64_t> limitMinutes(UsageWindowKind kind)
{
    switch (kind) {
    case UsageWindowKind::FiveHours:
        return 300;
    case UsageWindowKind::Hour:
        return 60;
    case UsageWindowKind::Day:
        return 1'440;
    case UsageWindowKind::Week:
        return 10'080;
    case UsageWindowKind::Month:
        return std::nullopt;
    }
    Q_UNREACHABLE();
}

} // namespace tallyglass
