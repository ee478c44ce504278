#include "model/RateLimitUsage.h"

#include "support/Table.h"

using namespace tallyglass;

struct LabelRow
{
    const char *name;
    std::optional<std::int64_t> minutes;
    const char *label;
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
            {"other hours", 180, "3h"},
            {"day", 1'440, "日"},
            {"a week is not counted in days", 10'080, "7日"},
            {"other days", 2'880, "2日"},
            {"a minute short of five hours", 299, "299分"},
        });
    }
    void windowLabel()
    {
        const auto row = test::currentRow<LabelRow>();
        QCOMPARE(RateLimitUsage{.windowMinutes = row.minutes}.windowLabel(),
                 QString::fromUtf8(row.label));
    }

    void planDisplayName()
    {
        const auto shown = [](const char *planType) {
            return RateLimitUsage{.planType = QString::fromUtf8(planType)}.planDisplayName();
        };
        QCOMPARE(shown("TEAM"), QStringLiteral("Team"));
        QCOMPARE(shown("maxX5"), QStringLiteral("MaxX5")); // Only the first letter changes.
        QCOMPARE(shown("pro_lite"), QStringLiteral("Pro_lite"));
        QVERIFY(!shown("").has_value());
    }
};

QTEST_GUILESS_MAIN(RateLimitUsageTest)
#include "RateLimitUsageTest.moc"
