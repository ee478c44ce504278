#include "model/Formatting.h"

#include "support/Table.h"

using namespace tallyglass;
using namespace std::chrono_literals;

struct PercentRow
{
    const char *name;
    double fraction;
    const char *text;
};

struct TokensRow
{
    const char *name;
    std::int64_t count;
    const char *text;
};

struct CountdownRow
{
    const char *name;
    std::chrono::milliseconds left;
    const char *text;
    const char *compact;
};

class FormattingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void percent_data()
    {
        test::table<PercentRow>({
            {"a sliver shows", 0.0001, "1%"},
            {"float noise is not use", 0.12000001, "12%"},
            {"rounded up, not to the nearest", 0.1201, "13%"},
            {"largest exact", 9.99, "999%"},
            {"beyond", 9.9901, "999%+"},
            {"negative", -0.3, "0%"},
        });
    }
    void percent()
    {
        const auto row = test::currentRow<PercentRow>();
        QCOMPARE(formatPercent(row.fraction), QString::fromUtf8(row.text));
    }

    void tokens_data()
    {
        test::table<TokensRow>({
            {"negative in full", -123'456, "-123456"},
            {"last in full", 999, "999"},
            {"half up to the even", 1'500, "2K"},
            {"half down to the even", 2'500, "2K"},
            {"just above a half", 2'501, "3K"},
            {"no million before one", 999'999, "1000K"},
            {"first million", 1'000'000, "1.0M"},
            {"tenth half down to the even", 2'250'000, "2.2M"},
            {"no larger unit", 1'234'567'890, "1234.6M"},
        });
    }
    void tokens()
    {
        const auto row = test::currentRow<TokensRow>();
        QCOMPARE(formatTokenCount(row.count), QString::fromUtf8(row.text));
    }

    void countdown_data()
    {
        test::table<CountdownRow>({
            {"due", 0s, "あと1分", "1m"},
            {"parts of a second are dropped", 119'999ms, "あと1分", "1m"},
            {"first hour", 1h, "あと1時間0分", "1h"},
            {"first day", 24h, "あと1日0時間", "1d"},
            {"days", 3 * 24h + 5h + 59min, "あと3日5時間", "3d"},
        });
    }
    void countdown()
    {
        const auto row = test::currentRow<CountdownRow>();
        const Instant now{1'700'000'000s};
        QCOMPARE(formatResetCountdown(now + row.left, now), QString::fromUtf8(row.text));
        QCOMPARE(formatCompactCountdown(now + row.left, now), QString::fromUtf8(row.compact));
    }
};

QTEST_GUILESS_MAIN(FormattingTest)
#include "FormattingTest.moc"
