#include "model/RateLimitUsage.h"

#include "support/Table.h"

using namespace tallyglass;

struct LabelRow
{
    const char *name;
    std::optional<std::int64_t> minutes;
    const char *label;
};

struct PlanRow
{
    const char *name;
    const char *planType;
    const char *shown;
};

class RateLimitUsageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowLabel_data()
    {
        test::table<LabelRow>({
            {"unknown", std::nullopt, "上限"},
            {"hour", 60, "1h"},
            {"five hours", 300, "5h"},
            {"other hours", 180, "3h"},
            {"day", 1'440, "日"},
            {"a week is not counted in days", 10'080, "7日"},
            {"other days", 2'880, "2日"},
            {"minutes", 90, "90分"},
            {"a minute short of five hours", 299, "299分"},
        });
    }
    void windowLabel()
    {
        const auto row = test::currentRow<LabelRow>();
        QCOMPARE(RateLimitUsage{.windowMinutes = row.minutes}.windowLabel(),
                 QString::fromUtf8(row.label));
    }

    void planDisplayName_data()
    {
        test::table<PlanRow>({
            {"lower case", "plus", "Plus"},
            {"capitals", "TEAM", "Team"},
            {"two letters", "go", "Go"},
            {"unknown: only the first letter changes", "maxX5", "MaxX5"},
            {"part of a known one", "pro_lite", "Pro_lite"},
            {"empty", "", nullptr},
            {"absent", nullptr, nullptr},
        });
    }
    void planDisplayName()
    {
        const auto row = test::currentRow<PlanRow>();
        RateLimitUsage limit;
        if (row.planType)
            limit.planType = QString::fromUtf8(row.planType);
        QCOMPARE(limit.planDisplayName().has_value(), row.shown != nullptr);
        QCOMPARE(limit.planDisplayName().value_or(QString()), QString::fromUtf8(row.shown));
    }
};

QTEST_GUILESS_MAIN(RateLimitUsageTest)
#include "RateLimitUsageTest.moc"
