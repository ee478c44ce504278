#include "platform/Errand.h"
#include "support/FakeClock.h"

#include <QSemaphore>
#include <QTest>

using namespace tallyglass;
using namespace std::chrono_literals;

class WorkersTest : public QObject
{
    Q_OBJECT

private:
    test::FakeClock m_clock;
    std::shared_ptr<QSemaphore> m_release = std::make_shared<QSemaphore>();

    /// Ends when it is released.
    std::function<int()> hanging(int result) const
    {
        return [release = m_release, result] {
            release->acquire();
            return result;
        };
    }

private Q_SLOTS:
    void nobodyWaitsLongerThanTheirPatience()
    {
        Workers workers(m_clock);
        Errand<int> errand(workers);
        auto first = errand.run(10s, hanging(1));
        m_clock.advance(9'999ms);
        QVERIFY(!first.isReady());
        m_clock.advance(1ms);
        QVERIFY(first.isReady());
        QCOMPARE(QCoro::waitFor(std::move(first)), std::nullopt);

        // Nothing else is begun before that has ended, and its result is not lost.
        auto second = errand.run(10s, [] { return 2; });
        QVERIFY(!second.isReady());
        m_release->release();
        QCOMPARE(QCoro::waitFor(std::move(second)), 1);
        QCOMPARE(QCoro::waitFor(errand.run(10s, [] { return 3; })), 3);
        QCOMPARE(m_clock.timers(), std::size_t{0});
        QVERIFY(workers.waitForAll(0s));
    }

    void workThatThrowsGivesNothing()
    {
        Workers workers(m_clock);
        Errand<int> errand(workers);
        const std::function<int()> throwing = []() -> int { throw std::bad_alloc(); };
        QCOMPARE(QCoro::waitFor(errand.run(10s, throwing)), std::nullopt);
        QCOMPARE(QCoro::waitFor(errand.run(10s, [] { return 3; })), 3);
    }

    void theirEndLetsEverybodyGo()
    {
        auto workers = std::make_unique<Workers>(m_clock);
        Errand<int> errand(*workers);
        const auto waiting = errand.run(10s, hanging(1));
        const auto waitingToo = errand.run(10s, hanging(2));
        QVERIFY(!workers->waitForAll(1ms));
        workers->letGo();
        QVERIFY(waiting.isReady() && waitingToo.isReady());
        Errand<int> late(*workers);
        QCOMPARE(QCoro::waitFor(late.run(10s, [] { return 3; })), std::nullopt);
        workers.reset(); // leaves the thread behind
        m_release->release();
    }
};

QTEST_GUILESS_MAIN(WorkersTest)
#include "WorkersTest.moc"
