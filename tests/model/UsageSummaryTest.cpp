#include "model/UsageSummary.h"

#include "support/Table.h"
#include "support/Texts.h"

using namespace tallyglass;

struct PercentRow
{
    const char *name;
    ProviderUsageSummary summary;
    double percent;
    const char *text;
    bool isActive;
};

struct SumRow
{
    const char *name;
    TokenUsage a;
    TokenUsage b;
    const char *sum;
    std::int64_t total;
};

class UsageSummaryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void percent_data()
    {
        const TokenUsage tokens{.inputTokens = 200, .outputTokens = 50};
        const auto limit = [](double used, std::optional<bool> isKnown) {
            return RateLimitUsage{.usedPercent = used, .percentKnown = isKnown};
        };
        test::table<PercentRow>({
            {"estimate", {.tokens = tokens, .budgetTokens = 1'000}, 0.25, "~25%", true},
            {"estimate above all", {.tokens = tokens, .budgetTokens = 10}, 25, "~999%+", true},
            {"a negative budget is none", {.tokens = tokens, .budgetTokens = -5}, 0, "--", true},
            {"a limit beats the estimate",
             {.tokens = tokens, .budgetTokens = 1'000, .rateLimit = limit(0.9, true)},
             0.9,
             "90%",
             true},
            {"a share not called unknown is known",
             {.rateLimit = limit(0.4, {})},
             0.4,
             "40%",
             true},
            {"an unknown share is estimated",
             {.tokens = tokens, .budgetTokens = 1'000, .rateLimit = limit(0.9, false)},
             0.25,
             "~25%",
             true},
            {"events without tokens", {.eventCount = 1, .budgetTokens = 1'000}, 0, "~0%", true},
            {"nothing", {.budgetTokens = 1'000}, 0, "~0%", false},
        });
    }
    void percent()
    {
        const auto row = test::currentRow<PercentRow>();
        QCOMPARE(row.summary.percent(), row.percent);
        QCOMPARE(row.summary.percentText(), QString::fromUtf8(row.text));
        QCOMPARE(row.summary.hasActivity(), row.isActive);
    }

    void sum_data()
    {
        const TokenUsage counters{
            .inputTokens = 1, .outputTokens = 2, .cacheCreationTokens = 4, .cacheReadTokens = 8};
        test::table<SumRow>({
            {"each counter by itself", counters, counters, "2/4/8/16", 30},
            {"a stated total is larger",
             counters,
             {.explicitTotalTokens = 100},
             "1/2/4/8=100",
             100},
            {"stated totals that cancel out",
             {.inputTokens = 3, .explicitTotalTokens = 7},
             {.explicitTotalTokens = -7},
             "3/0/0/0",
             3},
        });
    }
    void sum()
    {
        const auto row = test::currentRow<SumRow>();
        QCOMPARE(test::toText(row.a + row.b), QString::fromUtf8(row.sum));
        QCOMPARE((row.a + row.b).totalTokens(), row.total);
    }
};

QTEST_GUILESS_MAIN(UsageSummaryTest)
#include "UsageSummaryTest.moc"
