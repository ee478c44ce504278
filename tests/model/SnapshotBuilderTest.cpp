#include "model/SnapshotBuilder.h"

#include "support/Table.h"
#include "support/Texts.h"

#include <QTimeZone>

#include <random>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QTimeZone tokyo("Asia/Tokyo");
const Instant now = test::at("2026-02-12T09:10:00Z"); // 18:10 in Tokyo

UsageEvent tokensOf(const QString &model, std::int64_t tokens)
{
    return {.date = now, .model = model, .usage = {.inputTokens = tokens}};
}

} // namespace

struct EdgeRow
{
    const char *name;
    const char *date;
    const char *windows; ///< in which an event of that date counts
};

/// A limit, told from others by its plan.
struct OfferedLimit
{
    const char *plan;
    std::chrono::seconds age;
    std::optional<std::int64_t> minutes;
    std::optional<bool> percentKnown = true;
    std::size_t fileOrder = 0;
};

struct LimitRow
{
    const char *name;
    std::vector<OfferedLimit> offered;
    const char *chosen; ///< plan by window
};

class SnapshotBuilderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edges_data()
    {
        test::table<EdgeRow>({
            {"now is in every window", "2026-02-12T09:10:00Z", "fiveHours hour day week month"},
            {"rolling windows end now", "2026-02-12T09:10:00.001Z", "hour day month"},
            {"the end of the hour is in it", "2026-02-12T10:00:00Z", "hour day month"},
            {"five hours ago", "2026-02-12T04:10:00Z", "fiveHours day week month"},
            {"just before that", "2026-02-12T04:09:59.999Z", "day week month"},
            {"just before midnight", "2026-02-11T14:59:59.999Z", "week month"},
            {"just before that week", "2026-02-05T09:09:59.999Z", "month"},
            {"just before the month", "2026-01-31T14:59:59.999Z", ""},
            {"the next month has begun", "2026-02-28T15:00:00.001Z", ""},
        });
    }
    void edges()
    {
        const auto row = test::currentRow<EdgeRow>();
        SnapshotBuilder builder(now, tokyo);
        builder.add({.date = test::at(row.date), .usage = {.outputTokens = 5}}, 0);
        QStringList windows;
        for (const auto &window : builder.build(defaultBudgets()).summaries) {
            if (window.summary(UsageProvider::Codex).tokens.outputTokens == 5)
                windows += rawValue(window.window);
        }
        QCOMPARE(windows.join(u' '), QString::fromUtf8(row.windows));
    }

    void limits_data()
    {
        const auto open = std::nullopt;
        test::table<LimitRow>({
            {"each length has its window",
             {{"a", 0s, 300}, {"b", 0s, 60}, {"c", 0s, 1'440}, {"d", 0s, 10'080}},
             "fiveHours=a hour=b day=c week=d"},
            {"another length has none", {{"a", 0s, 299}, {"b", 0s, 43'200}}, ""},
            {"without a length it serves all",
             {{"a", 0s, open}},
             "fiveHours=a hour=a day=a week=a month=a"},
            {"the newest, whatever the order",
             {{"a", 2s, 300}, {"b", 1s, 300}, {"c", 3s, 300}},
             "fiveHours=b"},
            {"of one date the later in its file", {{"a", 1s, 300}, {"b", 1s, 300}}, "fiveHours=b"},
            {"of one date the later file's",
             {{"a", 1s, 300, true, 1}, {"b", 1s, 300, true, 0}},
             "fiveHours=a"},
            {"a known share beats a newer unknown",
             {{"a", 9s, 300, true}, {"b", 1s, 300, false}},
             "fiveHours=a"},
            {"its own length beats a known share",
             {{"a", 9s, 300, false}, {"b", 1s, open, true}},
             "fiveHours=a hour=b day=b week=b month=b"},
            {"open ones: known first",
             {{"a", 9s, open, true}, {"b", 1s, open, false}},
             "fiveHours=a hour=a day=a week=a month=a"},
            {"outside the window it is not chosen", {{"a", 6h, 300}, {"b", 6h, 10'080}}, "week=b"},
        });
    }
    void limits()
    {
        const auto row = test::currentRow<LimitRow>();
        SnapshotBuilder builder(now, tokyo);
        for (const OfferedLimit &offered : row.offered) {
            const RateLimitUsage limit{.windowMinutes = offered.minutes,
                                       .planType = QString::fromUtf8(offered.plan),
                                       .percentKnown = offered.percentKnown};
            builder.add({.date = now - offered.age, .rateLimits = {limit}}, offered.fileOrder);
        }
        QStringList chosen;
        for (const auto &window : builder.build(defaultBudgets()).summaries) {
            if (const auto limit = window.summary(UsageProvider::Codex).rateLimit)
                chosen += rawValue(window.window) + u'=' + *limit->planType;
        }
        QCOMPARE(chosen.join(u' '), QString::fromUtf8(row.chosen));
    }

    void modelsAreOrdered()
    {
        SnapshotBuilder builder(now, tokyo);
        for (const auto &[model, tokens] :
             {std::pair{"small", 1}, {"b", 5}, {"a", 5}, {"sum", 4}, {"sum", 4}})
            builder.add(tokensOf(QString::fromUtf8(model), tokens), 0);
        builder.add({.date = now, .usage = {.inputTokens = 100}}, 0); // of no model
        const auto summary =
            builder.build(defaultBudgets()).summaries.front().summary(UsageProvider::Codex);
        QCOMPARE(test::toText(summary),
                 QStringLiteral("119/0/0/0 in 6 events, sum 8/0/0/0 in 2, a 5/0/0/0 in 1, "
                                "b 5/0/0/0 in 1, small 1/0/0/0 in 1"));
    }

    void everyProviderIsThereWithItsBudget()
    {
        const UsageBudgets budgets{{{QStringLiteral("claude.week"), 77}}};
        const UsageSnapshot snapshot = SnapshotBuilder(now, tokyo).build(budgets);
        QCOMPARE(snapshot.summaries.size(), allWindowKinds.size());
        const auto &week = snapshot.summaries[3];
        QCOMPARE(week.providers.size(), allProviders.size());
        QCOMPARE(week.providers[1].provider, UsageProvider::Claude);
        QCOMPARE(week.providers[1].budgetTokens, 77);
        QCOMPARE(week.providers[2].budgetTokens, 5'000'000); // not stored, so the built-in one
    }

    void splitDoesNotMatter()
    {
        constexpr std::size_t files = 12;
        std::mt19937 random(20260212);
        std::vector<std::vector<UsageEvent>> eventsOfFile(files);
        for (int i = 0; i < 400; ++i) {
            UsageEvent event = tokensOf(QString::number(random() % 5), random() % 1'000);
            event.provider = allProviders[random() % allProviders.size()];
            event.date -= std::chrono::hours(random() % 40); // Few dates, so that many are equal.
            event.rateLimits = {{.usedPercent = static_cast<double>(i),
                                 .windowMinutes = random() % 2 ? std::optional(300) : std::nullopt,
                                 .percentKnown = random() % 2 == 0}};
            eventsOfFile[random() % files].push_back(event);
        }
        const auto built = [&](std::size_t parts, std::size_t salt) {
            std::vector<SnapshotBuilder> builders(parts, SnapshotBuilder(now, tokyo));
            for (std::size_t i = 0; i < files; ++i) {
                const std::size_t file = (i * 5 + salt) % files; // in another order each time
                for (const UsageEvent &event : eventsOfFile[file])
                    builders[(file * (salt + 1)) % parts].add(event, file);
            }
            for (std::size_t part = 1; part < parts; ++part)
                builders.front().merge(builders[part]);
            return builders.front().build(defaultBudgets());
        };
        const UsageSnapshot whole = built(1, 0);
        QVERIFY(whole.summaries[0].providers[0].rateLimit);
        for (std::size_t parts = 1; parts <= 4; ++parts) {
            for (std::size_t salt = 0; salt < 6; ++salt)
                QVERIFY2(built(parts, salt) == whole,
                         qPrintable(QStringLiteral("%1 parts, %2").arg(parts).arg(salt)));
        }
    }
};

QTEST_GUILESS_MAIN(SnapshotBuilderTest)
#include "SnapshotBuilderTest.moc"
