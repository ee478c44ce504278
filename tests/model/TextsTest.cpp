#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "model/RateLimitUsage.h"
#include "model/UsageSummary.h"
#include "support/Table.h"

#include <QLocale>
#include <QTimeZone>
#include <QTranslator>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QStringList none;
const Instant now{1'700'000'000s};

/// A catalogue that holds one text.
class OneText : public QTranslator
{
public:
    OneText(QByteArray key, QString text)
        : m_key(std::move(key))
        , m_text(std::move(text))
    {
        QCoreApplication::installTranslator(this);
    }
    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *key, const char *, int) const override
    {
        return m_key == key ? m_text : QString();
    }

private:
    QByteArray m_key;
    QString m_text;
};

} // namespace

class TextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts()
    {
        const auto translated = [](const char *format) {
            const OneText catalogue("alerts.body", QString::fromUtf8(format));
            return formatText("alerts.body", {QStringLiteral("%@"), QStringLiteral("b")});
        };
        QCOMPARE(test::mismatches<const char *>(translated,
                                                {{"%@ then %d", "%@ then b"},
                                                 {"%2$@ before %1$@", "b before %@"},
                                                 {"%@-%@-%@-", "%@-b--"},
                                                 {"100% of %@ %", "100% of %@ %"},
                                                 {"%@ %1$", "%@ %1$"}}),
                 none);
        QCOMPARE(formatText("alerts.body", {QStringLiteral("Claude"), QStringLiteral("80%")}),
                 QStringLiteral("Claude の使用量が 80% に達しました"));
        const OneText catalogue("window.short.day", QStringLiteral("d"));
        QCOMPARE(shortLabel(UsageWindowKind::Day), QStringLiteral("d"));
        QCOMPARE(displayText("common.exit"), QStringLiteral("終了"));
    }

    void figures()
    {
        QCOMPARE(test::mismatches<double>(formatPercent,
                                          {{0.0001, "1%"},
                                           {0.12000001, "12%"},
                                           {0.1201, "13%"},
                                           {9.99, "999%"},
                                           {9.9901, "999%+"},
                                           {-0.3, "0%"}}),
                 none);
        QCOMPARE(test::mismatches<std::int64_t>(formatTokenCount,
                                                {{-123'456, "-123456"},
                                                 {999, "999"},
                                                 {1'500, "2K"},
                                                 {2'500, "2K"},
                                                 {2'501, "3K"},
                                                 {999'999, "1000K"},
                                                 {1'000'000, "1.0M"},
                                                 {2'250'000, "2.2M"},
                                                 {1'234'567'890, "1234.6M"}}),
                 none);
    }

    void times()
    {
        const auto both = [](std::chrono::milliseconds left) {
            return formatResetCountdown(now + left, now) + u' '
                + formatCompactCountdown(now + left, now);
        };
        QCOMPARE(test::mismatches<std::chrono::milliseconds>(both,
                                                             {{-1h, "あと1分 1m"},
                                                              {119'999ms, "あと1分 1m"},
                                                              {2min, "あと2分 2m"},
                                                              {1h, "あと1時間0分 1h"},
                                                              {24h - 1s, "あと23時間59分 23h"},
                                                              {24h, "あと1日0時間 1d"},
                                                              {77h + 59min, "あと3日5時間 3d"}}),
                 none);
        QLocale::setDefault(QLocale(QStringLiteral("en_GB")));
        QCOMPARE(formatClockTime(now, QTimeZone("Asia/Kolkata")), QStringLiteral("03:43"));
    }

    void limits()
    {
        const auto label = [](std::optional<std::int64_t> minutes) {
            return RateLimitUsage{.windowMinutes = minutes}.windowLabel();
        };
        QCOMPARE(test::mismatches<std::optional<std::int64_t>>(label,
                                                               {{{}, "上限"},
                                                                {60, "1h"},
                                                                {180, "3h"},
                                                                {300, "5h"},
                                                                {1'440, "日"},
                                                                {10'080, "7日"},
                                                                {2'880, "2日"},
                                                                {299, "299分"}}),
                 none);
        const auto plan = [](const char *type) {
            const RateLimitUsage limit{.planType = QString::fromUtf8(type)};
            return limit.planDisplayName().value_or(QStringLiteral("-"));
        };
        QCOMPARE(
            test::mismatches<const char *>(
                plan, {{"TEAM", "Team"}, {"maxX5", "MaxX5"}, {"pro_lite", "Pro_lite"}, {"", "-"}}),
            none);
    }

    void shares()
    {
        const auto shown = [](const ProviderUsageSummary &summary) {
            const QString activity = summary.hasActivity() ? QString() : QStringLiteral(" idle");
            return QString::number(summary.percent()) + u' ' + summary.percentText() + activity;
        };
        const TokenUsage tokens{.inputTokens = 200, .outputTokens = 50};
        const RateLimitUsage known{.usedPercent = 0.9, .percentKnown = true};
        const RateLimitUsage unknown{.usedPercent = 0.9, .percentKnown = false};
        const RateLimitUsage unsaid{.usedPercent = 0.4};
        QCOMPARE(test::mismatches<ProviderUsageSummary>(
                     shown,
                     {{{.tokens = tokens, .budgetTokens = 1'000}, "0.25 ~25%"},
                      {{.tokens = tokens, .budgetTokens = 10}, "25 ~999%+"},
                      {{.tokens = tokens, .budgetTokens = -5}, "0 --"},
                      {{.tokens = tokens, .budgetTokens = 1'000, .rateLimit = known}, "0.9 90%"},
                      {{.tokens = tokens, .budgetTokens = 500, .rateLimit = unknown}, "0.5 ~50%"},
                      {{.rateLimit = unsaid}, "0.4 40%"},
                      {{.eventCount = 1, .budgetTokens = 1'000}, "0 ~0%"},
                      {{.budgetTokens = 1'000}, "0 ~0% idle"}}),
                 none);
    }
};

QTEST_GUILESS_MAIN(TextsTest)
#include "TextsTest.moc"
