#include "ui/ProviderRow.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "ui/ProviderColors.h"

#include <algorithm>

namespace tallyglass {

namespace {

const QString noFigure = QStringLiteral("--");

double passedShare(const RateLimitUsage &limit, Instant now)
{
    if (!limit.resetDate)
        return 0;
    // A limit that states no length is taken to have the usual one.
    const auto usual = factsOf(UsageWindowKind::FiveHours).limitMinutes;
    const auto stated = limit.windowMinutes.value_or(0) < 1 ? usual : limit.windowMinutes;
    const auto minutes = static_cast<double>(stated.value_or(0));
    const std::chrono::duration<double, std::ratio<60>> left = *limit.resetDate - now;
    return 1 - std::clamp(left.count() / minutes, 0.0, 1.0);
}

QString limitText(const RateLimitUsage &limit, Instant now)
{
    const QString label = limit.windowLabel() + u' ';
    if (limit.isPercentKnown())
        return label + formatPercent(limit.usedPercent);
    return label + (limit.resetDate ? formatResetCountdown(*limit.resetDate, now) : noFigure);
}

} // namespace

ProviderRow providerRow(const ProviderUsageSummary &summary, Instant now)
{
    const auto &limit = summary.rateLimit;
    ProviderRow row;
    row.provider = rawValue(summary.provider);
    row.name = displayName(summary.provider);
    row.tint = providerColor(summary.provider);
    row.usedShare = std::clamp(summary.percent(), 0.0, 1.0);
    row.usedText = summary.percentText();
    row.resetShare = limit ? passedShare(*limit, now) : 0;
    row.resetText =
        limit && limit->resetDate ? formatCompactCountdown(*limit->resetDate, now) : noFigure;
    row.tokensText = formatTokenCount(std::max<std::int64_t>(summary.tokens.totalTokens(), 0));
    if (limit && limit->isPercentKnown())
        row.remainingText = formatText("status.remaining.format",
                                       {formatPercent(std::max(1 - limit->usedPercent, 0.0))});
    row.inputText =
        formatText("status.input.format", {formatTokenCount(summary.tokens.inputTokens)});
    row.outputText =
        formatText("status.output.format", {formatTokenCount(summary.tokens.outputTokens)});
    row.limitText = limit ? limitText(*limit, now) : displayText("common.noData");
    return row;
}

} // namespace tallyglass
