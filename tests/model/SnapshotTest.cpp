#include "model/SnapshotBuilder.h"
#include "model/UsageJson.h"
#include "support/Table.h"
#include "support/Texts.h"

#include <QJsonDocument>
#include <QTimeZone>

#include <random>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QStringList none;
const QTimeZone tokyo("Asia/Tokyo");
const Instant now = test::at("2026-02-12T09:10:00Z"); // 18:10 in Tokyo

UsageEvent tokensOf(const QString &model, std::int64_t tokens)
{
    return {.date = now, .model = model, .usage = {.inputTokens = tokens}};
}

/// "fiveHours=a day=b", what \a look sees of Codex in each window, where it sees anything.
template<typename Look>
QString inWindows(const SnapshotBuilder &builder, Look look)
{
    QStringList texts;
    for (const auto &window : builder.build(defaultBudgets()).summaries) {
        if (const QString text = look(window.summary(UsageProvider::Codex)); !text.isEmpty())
            texts += rawValue(window.window) + text;
    }
    return texts.join(u' ');
}

/// Four hundred events in twelve files, of few dates, so that many are equal.
std::vector<std::vector<UsageEvent>> randomFiles()
{
    std::mt19937 random(20260212);
    std::vector<std::vector<UsageEvent>> files(12);
    for (int i = 0; i < 400; ++i) {
        UsageEvent event = tokensOf(QString::number(random() % 5), random() % 1'000);
        event.provider = allProviders[random() % allProviders.size()];
        event.date -= std::chrono::hours(random() % 40);
        event.rateLimits = {{.usedPercent = i / 7.0,
                             .resetDate = now + std::chrono::seconds(i),
                             .windowMinutes = random() % 2 ? std::optional(300) : std::nullopt,
                             .planType = QString::number(i),
                             .percentKnown = random() % 2 == 0}};
        files[random() % files.size()].push_back(event);
    }
    return files;
}

/// What \a parts builders make of the files, each in another order by \a salt.
UsageSnapshot built(const std::vector<std::vector<UsageEvent>> &files, std::size_t parts,
                    std::size_t salt)
{
    std::vector<SnapshotBuilder> builders(parts, SnapshotBuilder(now, tokyo));
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::size_t file = (i * 5 + salt) % files.size();
        for (const UsageEvent &event : files[file])
            builders[(file * (salt + 1)) % parts].add(event, file);
    }
    for (std::size_t part = 1; part < parts; ++part)
        builders.front().merge(builders[part]);
    return builders.front().build(defaultBudgets());
}

// As the widget and other programs know it.
constexpr auto exampleJson =
    R"({"generatedAt":"2026-02-12T09:10:00Z","summaries":[{"endDate":"2026-02-12T09:10:00Z",)"
    R"("providers":[{"budgetTokens":7,"eventCount":6,"models":[{"eventCount":8,"model":"opus",)"
    R"("tokens":{"cacheCreationTokens":0,"cacheReadTokens":0,"inputTokens":9,"outputTokens":0}}],)"
    R"("provider":"claude","rateLimit":{"percentKnown":false,"planType":"plus",)"
    R"("resetDate":"2026-02-12T10:10:00Z","usedPercent":0.25,"windowMinutes":300},)"
    R"("tokens":{"cacheCreationTokens":3,"cacheReadTokens":4,"explicitTotalTokens":5,)"
    R"("inputTokens":9007199254740993,"outputTokens":2}}],)"
    R"("startDate":"2026-02-12T04:10:00Z","window":"fiveHours"}]})";

QByteArray compact(const auto &json)
{
    return QJsonDocument(json).toJson(QJsonDocument::Compact);
}

} // namespace

/// A limit, told from others by its plan.
struct OfferedLimit
{
    const char *plan;
    std::chrono::seconds age;
    std::optional<std::int64_t> minutes;
    std::optional<bool> percentKnown = true;
    std::size_t fileOrder = 0;
};

class SnapshotTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eventsInWindows()
    {
        const auto windows = [](const char *date) {
            SnapshotBuilder builder(now, tokyo);
            builder.add({.date = test::at(date), .usage = {.outputTokens = 5}}, 0);
            return inWindows(builder, [](const ProviderUsageSummary &codex) {
                return codex.tokens.outputTokens == 5 ? QStringLiteral(".") : QString();
            });
        };
        QCOMPARE(test::mismatches<const char *>(
                     windows,
                     {{"2026-02-12T09:10:00Z", "fiveHours. hour. day. week. month."},
                      {"2026-02-12T09:10:00.001Z", "hour. day. month."},
                      {"2026-02-12T10:00:00Z", "hour. day. month."},
                      {"2026-02-12T04:10:00Z", "fiveHours. day. week. month."},
                      {"2026-02-12T04:09:59.999Z", "day. week. month."},
                      {"2026-02-11T14:59:59.999Z", "week. month."},
                      {"2026-02-05T09:09:59.999Z", "month."},
                      {"2026-01-31T14:59:59.999Z", ""},
                      {"2026-02-28T15:00:00.001Z", ""}}),
                 none);
    }

    void limitsOfWindows()
    {
        using Limits = std::vector<OfferedLimit>;
        const auto chosen = [](const Limits &limits) {
            SnapshotBuilder builder(now, tokyo);
            for (const OfferedLimit &offered : limits) {
                const RateLimitUsage limit{.windowMinutes = offered.minutes,
                                           .planType = QString::fromUtf8(offered.plan),
                                           .percentKnown = offered.percentKnown};
                builder.add({.date = now - offered.age, .rateLimits = {limit}}, offered.fileOrder);
            }
            return inWindows(builder, [](const ProviderUsageSummary &codex) {
                return codex.rateLimit ? u'=' + *codex.rateLimit->planType : QString();
            });
        };
        const auto open = std::nullopt;
        QCOMPARE(test::mismatches<Limits>(
                     chosen,
                     {{{{"a", 0s, 300}, {"b", 0s, 60}, {"c", 0s, 1'440}, {"d", 0s, 10'080}},
                       "fiveHours=a hour=b day=c week=d"},
                      {{{"a", 0s, 299}, {"b", 0s, 43'200}}, ""},
                      {{{"a", 0s, open}}, "fiveHours=a hour=a day=a week=a month=a"},
                      // The newest, of one date the later in its file, or in the later file.
                      {{{"a", 2s, 300}, {"b", 1s, 300}, {"c", 3s, 300}}, "fiveHours=b"},
                      {{{"a", 1s, 300}, {"b", 1s, 300}}, "fiveHours=b"},
                      {{{"a", 1s, 300, true, 1}, {"b", 1s, 300, true, 0}}, "fiveHours=a"},
                      // A known share before a newer unknown one, its own length before both.
                      {{{"a", 9s, 300, true}, {"b", 1s, 300, false}}, "fiveHours=a"},
                      {{{"a", 9s, 300, false}, {"b", 1s, open, true}},
                       "fiveHours=a hour=b day=b week=b month=b"},
                      {{{"a", 9s, open, true}, {"b", 1s, open, false}},
                       "fiveHours=a hour=a day=a week=a month=a"},
                      {{{"a", 6h, 300}, {"b", 6h, 10'080}}, "week=b"}}),
                 none);
    }

    void sums()
    {
        SnapshotBuilder builder(now, tokyo);
        for (const auto &[model, tokens] :
             {std::pair{"small", 1}, {"b", 5}, {"a", 5}, {"sum", 4}, {"sum", 4}})
            builder.add(tokensOf(QString::fromUtf8(model), tokens), 0);
        builder.add({.date = now,
                     .usage = {.inputTokens = 1,
                               .outputTokens = 2,
                               .cacheCreationTokens = 4,
                               .cacheReadTokens = 8,
                               .explicitTotalTokens = 7}},
                    0); // of no model
        const UsageBudgets budgets{{{QStringLiteral("codex.fiveHours"), 77}}};
        const auto windows = builder.build(budgets).summaries;
        const auto codex = windows[0].providers[0];
        QCOMPARE(test::toText(codex),
                 QStringLiteral("20/2/4/8=7 in 6 events, sum 8/0/0/0 in 2, a 5/0/0/0 in 1, "
                                "b 5/0/0/0 in 1, small 1/0/0/0 in 1"));
        QCOMPARE(codex.tokens.totalTokens(), 34);
        QCOMPARE((codex.tokens + TokenUsage{.explicitTotalTokens = 90}).totalTokens(), 97);
        QVERIFY(!(codex.tokens + TokenUsage{.explicitTotalTokens = -7}).explicitTotalTokens);
        QCOMPARE(codex.budgetTokens, 77);
        QCOMPARE(windows[3].providers[2].budgetTokens, 5'000'000); // not stored
        QCOMPARE(windows[0].activeProviders(), std::vector{codex});
    }

    void splitDoesNotMatter()
    {
        const auto files = randomFiles();
        const UsageSnapshot whole = built(files, 1, 0);
        QVERIFY(whole.summaries[0].providers[0].rateLimit);
        for (std::size_t parts = 1; parts <= 4; ++parts) {
            for (std::size_t salt = 0; salt < 6; ++salt)
                QVERIFY(built(files, parts, salt) == whole);
        }
        QVERIFY(snapshotFromJson(toJson(whole)) == whole);
    }

    void json()
    {
        using Change = std::pair<const char *, const char *>;
        const auto changed = [](const Change &change) {
            const QByteArray text = QByteArray(exampleJson).replace(change.first, change.second);
            const auto snapshot = snapshotFromJson(QJsonDocument::fromJson(text).object());
            const bool isSame = snapshot && compact(toJson(*snapshot)) == text;
            return QLatin1String(isSame ? "same" : snapshot ? "read" : "refused");
        };
        QCOMPARE(
            test::mismatches<Change>(
                changed,
                {{{"", ""}, "same"},
                 {{R"("windowMinutes":300)", R"("windowMinutes":null)"}, "read"},
                 {{R"("claude")", R"("Claude")"}, "refused"},
                 {{R"("fiveHours")", R"("sixHours")"}, "refused"},
                 {{R"("cacheReadTokens":4,)", ""}, "refused"},
                 {{R"("outputTokens":2)", R"("outputTokens":"2")"}, "refused"},
                 {{R"("outputTokens":2)", R"("outputTokens":2.5)"}, "refused"},
                 {{R"("windowMinutes":300)", R"("windowMinutes":true)"}, "refused"},
                 {{R"("percentKnown":false)", R"("percentKnown":0)"}, "refused"},
                 {{"0.25", "\"0.25\""}, "refused"},
                 {{"10:10:00Z", "10:10:00"}, "refused"},
                 {{R"("opus")", "null"}, "refused"},
                 {{R"("models":[)", R"("models":[7,)"}, "refused"},
                 // What would overflow when it is summed, here or in the panel.
                 {{R"("outputTokens":2)", R"("outputTokens":9223372036854775807)"}, "refused"},
                 {{R"("inputTokens":9,)", R"("inputTokens":-9223372036854775808,)"}, "refused"},
                 {{R"("inputTokens":9,)", R"("inputTokens":9223372036854775807,)"}, "same"},
                 {{R"("eventCount":6)", R"("eventCount":-9223372036854775808)"}, "refused"}}),
            none);
    }

    void history()
    {
        const std::vector<UsageHistorySample> samples{{.id = QUuid::createUuid(),
                                                       .date = now,
                                                       .provider = UsageProvider::Copilot,
                                                       .fiveHourPercent = 0.5,
                                                       .weekPercent = 1,
                                                       .totalTokens = 42}};
        QJsonArray json = toJson(samples);
        const QByteArray id = samples[0].id.toByteArray(QUuid::WithoutBraces).toUpper();
        QCOMPARE(compact(json),
                 R"([{"date":"2026-02-12T09:10:00Z","fiveHourPercent":0.5,"id":")" + id
                     + R"(","provider":"copilot","totalTokens":42,"weekPercent":1}])");
        QVERIFY(historyFromJson(json) == samples);
        json.append(QJsonObject{});
        QVERIFY(!historyFromJson(json)); // One broken sample voids the file.
    }
};

QTEST_GUILESS_MAIN(SnapshotTest)
#include "SnapshotTest.moc"
