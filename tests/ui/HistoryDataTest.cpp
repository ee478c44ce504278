#include "ui/HistoryData.h"

#include "support/FakeClock.h"
#include "support/Table.h"

#include <QLocale>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

using Minutes = std::chrono::minutes;

struct RunsRow
{
    const char *name;
    HistoryRange range;
    QList<Minutes> ages;
    QList<int> runLengths;
};

const Instant now = test::FakeClock().now(); // 21:30 in Tokyo
const QTimeZone zone("Asia/Tokyo");

UsageHistorySample sample(Minutes age, double fiveHours = 0.5, double week = 0.2)
{
    return {.date = now - age,
            .provider = UsageProvider::Claude,
            .fiveHourPercent = fiveHours,
            .weekPercent = week};
}

QList<int> runLengths(const HistoryData &data)
{
    QList<int> lengths;
    for (const HistoryLine &line : data.lines) {
        for (const auto &run : line.runs)
            lengths += static_cast<int>(run.size());
    }
    return lengths;
}

} // namespace

class HistoryDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Japanese)); }

    void breaksTheCurveWhereTheProgramWasNotRunning_data()
    {
        test::table<RunsRow>({
            {"one refresh missed", HistoryRange::Day, {30min, 15min, 0min}, {3}},
            {"a night", HistoryRange::Day, {600min, 590min, 10min, 0min}, {2, 2}},
            {"a lone sample", HistoryRange::Day, {300min, 10min, 0min}, {1, 2}},
            {"older than a day", HistoryRange::Day, {1'441min}, {}},
            {"older than a day, within a week", HistoryRange::Week, {1'441min}, {1}},
            {"the clock was set back", HistoryRange::Day, {10min, -60min}, {1}},
        });
    }
    void breaksTheCurveWhereTheProgramWasNotRunning()
    {
        const auto row = test::currentRow<RunsRow>();
        std::vector<UsageHistorySample> samples;
        for (const Minutes age : row.ages)
            samples.push_back(sample(age));
        const HistoryData data = historyData(samples, row.range, now, zone);
        QCOMPARE(runLengths(data), row.runLengths);
    }

    void drawsTheFigureOfTheRange()
    {
        const std::vector samples{sample(720min, 0.5, 0.2)};
        const auto day = historyData(samples, HistoryRange::Day, now, zone);
        QCOMPARE(day.lines.front().runs.front().front().x, 0.5);
        QCOMPARE(day.lines.front().runs.front().front().y, 0.5);
        QCOMPARE(day.summaryText, QStringLiteral("Claude 50%"));
        const auto week = historyData(samples, HistoryRange::Week, now, zone);
        QCOMPARE(week.lines.front().runs.front().front().y, 0.2);
    }

    void ticksAreTheUsersHoursAndDays()
    {
        const auto labels = [](HistoryRange range) {
            QStringList texts;
            for (const HistoryTick &tick : historyData({}, range, now, zone).ticks)
                texts += tick.label;
            return texts.join(u' ');
        };
        QCOMPARE(labels(HistoryRange::Day), QStringLiteral("0:00 6:00 12:00 18:00"));
        // From a Wednesday evening to the next.
        QCOMPARE(labels(HistoryRange::Week), QStringLiteral("木 金 土 日 月 火 水"));
    }

    void thinsACrowdButKeepsItsPeaks()
    {
        std::vector<UsageHistorySample> samples;
        for (int i = 13'000; i > 0; --i) {
            UsageHistorySample one = sample(0min, i == 6'500 ? 0.97 : i % 2 ? 0.4 : 0.3);
            one.date = now - std::chrono::milliseconds(i * 6'600LL);
            samples.push_back(one);
        }
        const HistoryData data = historyData(samples, HistoryRange::Day, now, zone);
        const auto &run = data.lines.front().runs.front();
        QVERIFY2(run.size() < 1'400, qPrintable(QString::number(run.size())));
        QVERIFY(std::ranges::is_sorted(run, {}, &HistoryPoint::x));
        QCOMPARE(std::ranges::max(run, {}, &HistoryPoint::y).y, 0.97);
        QCOMPARE(std::ranges::min(run, {}, &HistoryPoint::y).y, 0.3);
    }
};

QTEST_GUILESS_MAIN(HistoryDataTest)
#include "HistoryDataTest.moc"
