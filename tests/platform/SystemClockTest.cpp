#include "platform/qt/SystemClock.h"

#include <QElapsedTimer>
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

    void callsOnceAndNeverEarly()
    {
        int calls = 0;
        QElapsedTimer time;
        time.start();
        const auto overdue = m_clock.callAfter(-1h, [&] { calls += 100; });
        m_clock.callAfter(0ms, [&] { calls += 100; }).reset();
        std::unique_ptr<Timer> timer = m_clock.callAfter(50ms, [&] {
            ++calls;
            timer.reset(); // as its owner may
        });
        QTRY_COMPARE(calls, 101); // what lies behind us is called at once
        QVERIFY(time.elapsed() >= 50);
    }
};

QTEST_GUILESS_MAIN(SystemClockTest)
#include "SystemClockTest.moc"
