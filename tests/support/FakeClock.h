#pragma once

#include "platform/Clock.h"

#include <utility>
#include <vector>

namespace tallyglass::test {

/// A clock that stands still until told otherwise. advance() wakes the due sleepers at once, so a
/// test of a five-minute wait takes no time and has no race.
class FakeClock final : public Clock
{
public:
    FakeClock() = default;
    FakeClock(const FakeClock &) = delete;
    FakeClock &operator=(const FakeClock &) = delete;

    // Wakes whoever still sleeps: each finds its owner gone and ends, so no frame leaks.
    ~FakeClock() override { wakeSleepersUpTo(Instant::max()); }

    Instant now() const override { return m_now; }
    QTimeZone zone() const override { return m_zone; }
    void setZone(const QTimeZone &zone) { m_zone = zone; }

    QCoro::Task<> sleepFor(std::chrono::milliseconds duration) override
    {
        Sleep sleep{*this, m_now + duration};
        co_await sleep;
    }

    std::size_t sleepers() const { return m_sleepers.size(); }

    /// Below 0 the clock is set back; nobody wakes then.
    void advance(std::chrono::milliseconds duration)
    {
        m_now += duration;
        wakeSleepersUpTo(m_now);
    }

private:
    struct Sleep
    {
        FakeClock &clock;
        Instant wakeUp;

        bool await_ready() const { return wakeUp <= clock.m_now; }
        void await_suspend(std::coroutine_handle<> sleeper)
        {
            clock.m_sleepers.emplace_back(wakeUp, sleeper);
        }
        void await_resume() const { }
    };

    void wakeSleepersUpTo(Instant instant)
    {
        // Taken out first: a woken coroutine may go to sleep again.
        for (const auto &[wakeUp, sleeper] : std::exchange(m_sleepers, {})) {
            if (wakeUp <= instant)
                sleeper.resume();
            else
                m_sleepers.emplace_back(wakeUp, sleeper);
        }
    }

    Instant m_now = fromUnixNumber(1'714'566'600).value(); // 2024-05-01 12:30:00 UTC
    QTimeZone m_zone{"Asia/Tokyo"}; // off UTC, so that a missed conversion shows
    std::vector<std::pair<Instant, std::coroutine_handle<>>> m_sleepers;
};

} // namespace tallyglass::test
