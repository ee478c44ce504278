#include "platform/qt/SystemClock.h"

#include <QTest>

using namespace tallyglass;
using namespace std::chrono_literals;

class SystemClockTest : public QObject
{
    Q_OBJECT

    SystemClock m_clock;

private Q_SLOTS:
    void zoneFollowsTheSystemWhileWeRun()
    {
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", "America/New_York");
        QCOMPARE(m_clock.zone().id(), QByteArray("America/New_York"));
        qputenv("TZ", "Nowhere/Atlantis");
        QCOMPARE(m_clock.zone().id(), QByteArray("UTC"));
        qputenv("TZ", before);
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
        const QCoro::Task<> nap = clock->sleepFor(24h);
        QVERIFY(!nap.isReady());
        clock.reset();
        QVERIFY(nap.isReady());
    }
};

QTEST_GUILESS_MAIN(SystemClockTest)
#include "SystemClockTest.moc"
