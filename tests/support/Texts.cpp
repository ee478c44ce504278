#include "support/Texts.h"

#include "model/IsoDateTime.h"

#include <QDateTime>
#include <QStringList>

namespace tallyglass::test {

Instant at(std::string_view isoDateTime)
{
    return parseIsoDateTime(isoDateTime).value();
}

QString toText(Instant instant)
{
    return QDateTime::fromMSecsSinceEpoch(instant.time_since_epoch().count())
        .toUTC()
        .toString(Qt::ISODateWithMs);
}

QString toText(const TokenUsage &usage)
{
    const QString counters = QStringLiteral("%1/%2/%3/%4")
                                 .arg(usage.inputTokens)
                                 .arg(usage.outputTokens)
                                 .arg(usage.cacheCreationTokens)
                                 .arg(usage.cacheReadTokens);
    const auto &total = usage.explicitTotalTokens;
    return total ? counters + QStringLiteral("=%1").arg(*total) : counters;
}

QString toText(const RateLimitUsage &limit)
{
    QStringList parts{limit.isPercentKnown() ? QString::number(limit.usedPercent)
                                             : QStringLiteral("?")};
    if (limit.windowMinutes)
        parts += QStringLiteral("%1min").arg(*limit.windowMinutes);
    if (limit.resetDate)
        parts += QStringLiteral("until ") + toText(*limit.resetDate);
    if (limit.planType)
        parts += *limit.planType;
    return u'(' + parts.join(u' ') + u')';
}

QString toText(std::span<const UsageEvent> events)
{
    QStringList texts;
    for (const UsageEvent &event : events) {
        QStringList parts{rawValue(event.provider), toText(event.usage)};
        if (event.model)
            parts += *event.model;
        if (event.date != fileDate)
            parts += QStringLiteral("at ") + toText(event.date);
        for (const RateLimitUsage &limit : event.rateLimits)
            parts += toText(limit);
        texts += parts.join(u' ');
    }
    return texts.join(QStringLiteral("; "));
}

QString toText(const ProviderUsageSummary &summary)
{
    QStringList parts{toText(summary.tokens)
                      + QStringLiteral(" in %1 events").arg(summary.eventCount)};
    for (const ModelUsageSummary &model : summary.models) {
        parts += QStringLiteral("%1 %2 in %3")
                     .arg(model.model, toText(model.tokens))
                     .arg(model.eventCount);
    }
    if (summary.rateLimit)
        parts += toText(*summary.rateLimit);
    return parts.join(QStringLiteral(", "));
}

} // namespace tallyglass::test
