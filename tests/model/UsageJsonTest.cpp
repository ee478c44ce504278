#include "model/UsageJson.h"

#include "support/Table.h"
#include "support/Texts.h"

#include <QJsonDocument>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

UsageSnapshot exampleSnapshot()
{
    const Instant now = test::at("2026-02-12T09:10:00Z");
    const TokenUsage tokens{.inputTokens = 9'007'199'254'740'993, // beyond a double's integers
                            .outputTokens = 2,
                            .cacheCreationTokens = 3,
                            .cacheReadTokens = 4,
                            .explicitTotalTokens = 5};
    const RateLimitUsage limit{.usedPercent = 0.25,
                               .resetDate = now + 1h,
                               .windowMinutes = 300,
                               .planType = QStringLiteral("plus"),
                               .percentKnown = false};
    return {.generatedAt = now,
            .summaries = {{.startDate = now - 5h,
                           .endDate = now,
                           .providers = {{.provider = UsageProvider::Claude,
                                          .tokens = tokens,
                                          .eventCount = 6,
                                          .budgetTokens = 7,
                                          .models = {{QStringLiteral("opus"), {}, 8}},
                                          .rateLimit = limit}}}}};
}

// The example as the widget and other programs know it.
constexpr auto exampleJson =
    R"({"generatedAt":"2026-02-12T09:10:00Z","summaries":[{"endDate":"2026-02-12T09:10:00Z",)"
    R"("providers":[{"budgetTokens":7,"eventCount":6,"models":[{"eventCount":8,"model":"opus",)"
    R"("tokens":{"cacheCreationTokens":0,"cacheReadTokens":0,"inputTokens":0,"outputTokens":0}}],)"
    R"("provider":"claude","rateLimit":{"percentKnown":false,"planType":"plus",)"
    R"("resetDate":"2026-02-12T10:10:00Z","usedPercent":0.25,"windowMinutes":300},)"
    R"("tokens":{"cacheCreationTokens":3,"cacheReadTokens":4,"explicitTotalTokens":5,)"
    R"("inputTokens":9007199254740993,"outputTokens":2}}],)"
    R"("startDate":"2026-02-12T04:10:00Z","window":"fiveHours"}]})";

std::optional<UsageSnapshot> readExample(const char *replaced, const char *replacement)
{
    QByteArray json(exampleJson);
    if (!json.contains(replaced))
        qFatal("the example lacks %s", replaced);
    return snapshotFromJson(QJsonDocument::fromJson(json.replace(replaced, replacement)).object());
}

} // namespace

struct ChangeRow
{
    const char *name;
    const char *replaced;
    const char *replacement;
};

class UsageJsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void snapshotThereAndBack()
    {
        const QJsonObject json = toJson(exampleSnapshot());
        QCOMPARE(QJsonDocument(json).toJson(QJsonDocument::Compact), QByteArray(exampleJson));
        QVERIFY(snapshotFromJson(json) == exampleSnapshot());
    }

    void absentFieldsAreLeftOut()
    {
        UsageSnapshot snapshot = exampleSnapshot();
        snapshot.summaries[0].providers[0].rateLimit = RateLimitUsage{.usedPercent = 1};
        const QJsonObject json = toJson(snapshot);
        QVERIFY(QJsonDocument(json)
                    .toJson(QJsonDocument::Compact)
                    .contains(R"("rateLimit":{"usedPercent":1})"));
        QVERIFY(snapshotFromJson(json) == snapshot);
    }

    void refusals_data()
    {
        test::table<ChangeRow>({
            {"unknown provider", R"("claude")", R"("Claude")"},
            {"missing counter", R"("cacheReadTokens":4,)", ""},
            {"counter is a string", R"("outputTokens":2)", R"("outputTokens":"2")"},
            {"optional counter of another type", R"("windowMinutes":300)",
             R"("windowMinutes":true)"},
            {"date without zone", "10:10:00Z", "10:10:00"},
            {"null for what must be there", R"("opus")", "null"},
        });
    }
    void refusals()
    {
        const auto row = test::currentRow<ChangeRow>();
        QVERIFY(!readExample(row.replaced, row.replacement));
    }

    void historyThereAndBack()
    {
        const std::vector<UsageHistorySample> samples{{.id = QUuid::createUuid(),
                                                       .date = test::at("2026-02-12T09:10:00Z"),
                                                       .provider = UsageProvider::Copilot,
                                                       .fiveHourPercent = 0.5,
                                                       .weekPercent = 1,
                                                       .totalTokens = 42}};
        QJsonArray json = toJson(samples);
        QVERIFY(historyFromJson(json) == samples);
        json.append(QJsonObject{});
        QVERIFY(!historyFromJson(json)); // One broken sample voids the file.
    }
};

QTEST_GUILESS_MAIN(UsageJsonTest)
#include "UsageJsonTest.moc"
