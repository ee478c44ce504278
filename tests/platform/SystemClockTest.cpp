#include "platform/qt/SystemClock.h"

#include "support/Table.h"

using namespace tallyglass;
using namespace std::chrono_literals;

struct ZoneRow
{
    const char *name;
    const char *variable;
    const char *id;
};

class SystemClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void zone_data()
    {
        test::table<ZoneRow>({
            {"east of Greenwich", "Asia/Tokyo", "Asia/Tokyo"},
            {"changed while running", "America/New_York", "America/New_York"},
            {"nonsense is UTC", "Nowhere/Atlantis", "UTC"},
        });
    }

    void zone()
    {
        const auto row = test::currentRow<ZoneRow>();
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", row.variable);
        const QByteArray id = m_clock.zone().id();
        qputenv("TZ", before);
        QCOMPARE(id, QByteArray(row.id));
    }

    void neverWakesEarly()
    {
        const auto start = std::chrono::steady_clock::now();
        QCoro::waitFor(m_clock.sleepFor(50ms));
        QVERIFY(std::chrono::steady_clock::now() - start >= 50ms);
        QCoro::waitFor(m_clock.sleepFor(-1h));
    }

    void itsEndWakesTheSleepers()
    {
        auto clock = std::make_unique<SystemClock>();
        const QCoro::Task<> longNap = clock->sleepFor(24h);
        const QCoro::Task<> shortNap = clock->sleepFor(1h);
        QVERIFY(!longNap.isReady());
        clock.reset();
        QVERIFY(longNap.isReady());
        QVERIFY(shortNap.isReady());
    }

private:
    SystemClock m_clock;
};

QTEST_GUILESS_MAIN(SystemClockTest)
#include "SystemClockTest.moc"
