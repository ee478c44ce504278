#include "store/UsageHistory.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QTimeZone>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const Instant start = fromUnixNumber(1'714'566'600).value();
const QTimeZone zone("Asia/Tokyo");

/// A snapshot in which Codex has used so much of its five hours and of its week.
UsageSnapshot snapshotWith(double fiveHours, double week)
{
    UsageSnapshot snapshot = UsageSnapshot::empty(start, zone);
    for (WindowUsageSummary &window : snapshot.summaries) {
        ProviderUsageSummary &codex = window.providers.front();
        codex.tokens.inputTokens = 250;
        codex.rateLimit = RateLimitUsage{
            .usedPercent = window.window == UsageWindowKind::Week ? week : fiveHours};
    }
    return snapshot;
}

} // namespace

class UsageHistoryTest : public QObject
{
    Q_OBJECT

private:
    test::TemporaryHome m_home;
    StorageLocations m_locations{Host{.homeFolder = m_home.path()}};
    QStringList m_files = m_locations.readingPaths(QStringLiteral("usage_history.json"));

private Q_SLOTS:
    void init()
    {
        for (const QString &file : m_files)
            QFile::remove(file);
    }

    void samplesAreTenMinutesApart_data()
    {
        test::table<DistanceRow>({
            {"too early", 599s, 1},
            {"just in time", 600s, 2},
            {"the clock was set back", -3600s, 1},
        });
    }
    void samplesAreTenMinutesApart()
    {
        const auto row = test::currentRow<DistanceRow>();
        const UsageSnapshot snapshot = snapshotWith(0.5, 0.25);
        recordHistory(snapshot, start, zone, m_locations);
        const auto history = recordHistory(snapshot, start + row.later, zone, m_locations);
        QCOMPARE(history.size(), row.samples);
        QCOMPARE(loadHistory(m_locations), history);
    }

    void sharesAreClamped()
    {
        const auto history = recordHistory(snapshotWith(1.3, -0.1), start, zone, m_locations);
        QCOMPARE(history.size(), std::size_t{1}); // The other two have no activity.
        QCOMPARE(history[0].provider, UsageProvider::Codex);
        QCOMPARE(history[0].fiveHourPercent, 1.0);
        QCOMPARE(history[0].weekPercent, 0.0);
        QCOMPARE(history[0].totalTokens, 250);
    }

    void samplesLastThirtyDays()
    {
        const UsageSnapshot snapshot = snapshotWith(0.5, 0.5);
        recordHistory(snapshot, start, zone, m_locations);
        recordHistory(snapshot, start + 600s, zone, m_locations);
        const auto history = recordHistory(snapshot, start + 30 * 24h + 600s, zone, m_locations);
        QCOMPARE(history.size(), std::size_t{2});
        QVERIFY(history[0].date == start + 600s); // exactly 30 days old
    }

    void oneBadSampleMakesTheFileMalformed()
    {
        recordHistory(snapshotWith(0.5, 0.5), start, zone, m_locations);
        QFile file(m_files.front());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QByteArray content = file.readAll().replace("codex", "cobol");
        file.seek(0);
        file.write(content);
        file.close();
        // The widget's copy is whole and takes its place.
        QCOMPARE(loadHistory(m_locations).size(), std::size_t{1});
        QFile::remove(m_files.back());
        QVERIFY(loadHistory(m_locations).empty());
    }

private:
    struct DistanceRow
    {
        const char *name;
        std::chrono::seconds later;
        std::size_t samples;
    };
};

QTEST_GUILESS_MAIN(UsageHistoryTest)
#include "UsageHistoryTest.moc"
