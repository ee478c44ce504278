#include "store/BudgetsFile.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"

using namespace tallyglass;

struct BudgetsRow
{
    const char *name;
    const char *content; ///< null for no file
    std::int64_t codexDay;
    std::int64_t claudeWeek;
};

class BudgetsFileTest : public QObject
{
    Q_OBJECT

    const QString m_file = QStringLiteral("Library/Application Support/Tallyglass/budgets.json");

private Q_SLOTS:
    void load_data()
    {
        constexpr std::int64_t day = 1'000'000;
        constexpr std::int64_t week = 5'000'000;
        test::table<BudgetsRow>({
            {"missing file", nullptr, day, week},
            {"one key only", R"({"tokenBudgets":{"codex.day":7}})", 7, week},
            {"below 1 is kept", R"({"tokenBudgets":{"codex.day":0,"claude.week":-3}})", 0, -3},
            {"unknown keys are kept out of the way",
             R"({"tokenBudgets":{"codex.day":7,"x":1},"y":2})", 7, week},
            {"empty file", "", day, week},
            {"cut off", R"({"tokenBudgets":{"codex.day":7})", day, week},
            {"a list", R"([{"tokenBudgets":{"codex.day":7}}])", day, week},
            {"one of them a string", R"({"tokenBudgets":{"claude.week":7,"codex.day":"7"}})", day,
             week},
            {"one of them a fraction", R"({"tokenBudgets":{"claude.week":7,"codex.day":7.5}})", day,
             week},
            {"one of them null", R"({"tokenBudgets":{"claude.week":7,"codex.day":null}})", day,
             week},
            {"figures in a list", R"({"tokenBudgets":[7]})", day, week},
        });
    }
    void load()
    {
        const auto row = test::currentRow<BudgetsRow>();
        const test::TemporaryHome home;
        if (row.content)
            home.write(m_file, row.content);
        const UsageBudgets budgets = loadBudgets(StorageLocations({.homeFolder = home.path()}));
        QCOMPARE(budgets.budget(UsageProvider::Codex, UsageWindowKind::Day), row.codexDay);
        QCOMPARE(budgets.budget(UsageProvider::Claude, UsageWindowKind::Week), row.claudeWeek);
    }

    void save()
    {
        const test::TemporaryHome home;
        const StorageLocations locations({.homeFolder = home.path()});
        UsageBudgets budgets = defaultBudgets();
        budgets.tokenBudgets[QStringLiteral("claude.week")] = 9'007'199'254'740'993;
        QVERIFY(saveBudgets(budgets, locations));
        QVERIFY(loadBudgets(locations) == budgets);

        QList<qsizetype> places;
        for (const char *key : {"claude.day", "claude.fiveHours", "claude.hour", "codex.day"})
            places += home.read(m_file).indexOf(QByteArray("\n        \"") + key + "\": ");
        QVERIFY2(places.first() > 0 && std::ranges::is_sorted(places),
                 "not one key a line, sorted");
    }
};

QTEST_GUILESS_MAIN(BudgetsFileTest)
#include "BudgetsFileTest.moc"
