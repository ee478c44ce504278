#include "services/UsageAlerts.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "services/Settings.h"

#include <QUuid>

#include <algorithm>

namespace tallyglass {

namespace {

/// Under which the user defaults remember that an alert was raised. A provider without a reported
/// reset has always 0 there, and so alerts once for each threshold.
QString alertMark(const ProviderUsageSummary &provider, double threshold)
{
    qint64 reset = 0;
    if (provider.rateLimit && provider.rateLimit->resetDate) {
        reset = std::chrono::floor<std::chrono::seconds>(*provider.rateLimit->resetDate)
                    .time_since_epoch()
                    .count();
    }
    return QStringLiteral("alerted.%1.%2.%3")
        .arg(rawValue(provider.provider))
        .arg(reset)
        .arg(static_cast<qint64>(std::min(threshold * 100, 1e15)));
}

} // namespace

void raiseAlerts(const WindowUsageSummary &fiveHours, UserDefaults &defaults, Notifier &notifier)
{
    if (!stored(defaults, settings::alertsEnabled))
        return;
    const double threshold = stored(defaults, settings::alertThreshold);
    for (const ProviderUsageSummary &provider : fiveHours.providers) {
        if (provider.percent() < threshold)
            continue;
        const QString mark = alertMark(provider, threshold);
        if (defaults.value(mark).toBool())
            continue;
        // First the mark: a notification that the system refuses is not tried again and again.
        defaults.setValue(mark, true);
        notifier.post({
            .identifier = QUuid::createUuid().toString(QUuid::WithoutBraces),
            .title = QStringLiteral("Tallyglass"),
            .body = formatText("alerts.body",
                               {displayName(provider.provider), formatPercent(provider.percent())}),
        });
    }
}

} // namespace tallyglass
