#include "model/RateLimitUsage.h"

#include "model/DisplayTexts.h"
#include "model/UsageWindowKind.h"

#include <QLocale>

#include <array>

namespace tallyglass {

QString RateLimitUsage::windowLabel() const
{
    constexpr std::int64_t minutesPerHour = 60;
    constexpr std::int64_t minutesPerDay = 24 * minutesPerHour;

    if (!windowMinutes)
        return displayText("limit.window.unknown");
    const std::int64_t minutes = *windowMinutes;
    for (const UsageWindowKind kind : allWindowKinds) {
        if (factsOf(kind).limitMinutes == minutes)
            return displayText(factsOf(kind).limitLabel);
    }
    if (minutes % minutesPerDay == 0)
        return formatText("limit.window.days", {QLocale().toString(minutes / minutesPerDay)});
    if (minutes % minutesPerHour == 0)
        return QString::number(minutes / minutesPerHour) + u'h';
    return formatText("limit.window.minutes", {QLocale().toString(minutes)});
}

std::optional<QString> RateLimitUsage::planDisplayName() const
{
    if (!planType || planType->isEmpty())
        return std::nullopt;

    constexpr std::array knownPlans{"Free", "Go", "Plus", "Pro", "Team", "Enterprise"};
    for (const char *plan : knownPlans) {
        if (planType->compare(QLatin1String(plan), Qt::CaseInsensitive) == 0)
            return QString::fromLatin1(plan);
    }
    return planType->at(0).toUpper() + planType->mid(1);
}

} // namespace tallyglass
