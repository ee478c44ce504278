#include "ui/ProviderRow.h"

#include "support/FakeClock.h"
#include "support/Table.h"
#include "ui/ModelRow.h"

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

struct LimitRow
{
    const char *name;
    std::optional<RateLimitUsage> limit;
    const char *limitText;
    const char *resetText;
    double resetShare;
    const char *usedText;
    double usedShare;
};

const Instant now = test::FakeClock().now();

ModelUsageSummary modelUsage(const char *name, std::int64_t tokens)
{
    return {.model = QString::fromLatin1(name), .tokens = {.inputTokens = tokens}};
}

} // namespace

class ProviderRowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsTheLimit_data()
    {
        // Without a figure of the provider's, 250 of the budget's 1,000 tokens are an estimate.
        test::table<LimitRow>({
            {"no limit at all", std::nullopt, "データなし", "--", 0, "~25%", 0.25},
            {"half of the window is over",
             RateLimitUsage{.usedPercent = 0.421, .resetDate = now + 150min, .windowMinutes = 300},
             "5h 43%", "2h", 0.5, "43%", 0.421},
            {"a length of 0 counts as five hours",
             RateLimitUsage{.usedPercent = 0.5, .resetDate = now + 75min, .windowMinutes = 0},
             "0日 50%", "1h", 0.75, "50%", 0.5},
            {"a reset beyond the window is an empty ring",
             RateLimitUsage{.usedPercent = 0.5, .resetDate = now + 48h, .windowMinutes = 300},
             "5h 50%", "2d", 0, "50%", 0.5},
            {"an unknown share shows the countdown",
             RateLimitUsage{.resetDate = now + 150min, .windowMinutes = 300, .percentKnown = false},
             "5h あと2時間30分", "2h", 0.5, "~25%", 0.25},
            {"beyond the limit", RateLimitUsage{.usedPercent = 12, .windowMinutes = 10'080},
             "7日 999%+", "--", 0, "999%+", 1},
        });
    }
    void followsTheLimit()
    {
        const auto expected = test::currentRow<LimitRow>();
        const ProviderRow row = providerRow({.provider = UsageProvider::Claude,
                                             .tokens = {.inputTokens = 200, .outputTokens = 50},
                                             .budgetTokens = 1'000,
                                             .rateLimit = expected.limit},
                                            now);
        QCOMPARE(row.limitText, QString::fromUtf8(expected.limitText));
        QCOMPARE(row.resetText, QString::fromUtf8(expected.resetText));
        QCOMPARE(row.resetShare, expected.resetShare);
        QCOMPARE(row.usedText, QString::fromUtf8(expected.usedText));
        QCOMPARE(row.usedShare, expected.usedShare);
        QCOMPARE(row.tokensText, QStringLiteral("250"));
        QCOMPARE(row.inputText, QStringLiteral("入力 200"));
    }

    void tellsWhatIsLeftOnlyOfAKnownShare()
    {
        const ProviderUsageSummary reported{.rateLimit = RateLimitUsage{.usedPercent = 0.42}};
        QCOMPARE(providerRow(reported, now).remainingText, QStringLiteral("残り 58%"));
        QCOMPARE(providerRow({}, now).remainingText, QString());
    }

    void showsTheLargestModelsOfAllProviders()
    {
        WindowUsageSummary window;
        window.providers = {
            {.provider = UsageProvider::Codex,
             .models = {modelUsage("big", 9'000), modelUsage("shared", 300)}},
            {.provider = UsageProvider::Copilot,
             .models = {modelUsage("shared", 4'000), modelUsage("b", 300), modelUsage("a", 300),
                        modelUsage("tiny", 1)}},
        };
        QStringList shown;
        for (const ModelRow &row : topModels(window))
            shown += row.provider + u' ' + row.name + u' ' + row.tokensText;
        QCOMPARE(shown,
                 QStringList({QStringLiteral("codex big 9K"), QStringLiteral("copilot shared 4K"),
                              QStringLiteral("copilot a 300"), QStringLiteral("copilot b 300"),
                              QStringLiteral("codex shared 300")}));
    }
};

QTEST_GUILESS_MAIN(ProviderRowTest)
#include "ProviderRowTest.moc"
