#pragma once

#include "platform/Clock.h"

#include <algorithm>
#include <vector>

namespace tallyglass::test {

/// A clock that stands still until told otherwise. advance() makes the calls that are due at once,
/// so a test of a five-minute wait takes no time and has no race.
class FakeClock final : public Clock
{
public:
    FakeClock() = default;
    FakeClock(const FakeClock &) = delete;
    FakeClock &operator=(const FakeClock &) = delete;

    Instant now() const override { return m_now; }
    QTimeZone zone() const override { return m_zone; }
    void setZone(const QTimeZone &zone) { m_zone = zone; }

    std::unique_ptr<Timer> callAfter(std::chrono::milliseconds duration,
                                     std::function<void()> callBack) override
    {
        return std::make_unique<FakeTimer>(*this, m_now + duration, std::move(callBack));
    }

    std::size_t timers() const { return m_timers.size(); }

    /// Below 0 the clock is set back; nothing is due then.
    void advance(std::chrono::milliseconds duration)
    {
        m_now += duration;
        const auto isDue = [this](const FakeTimer *timer) { return timer->due <= m_now; };
        for (auto timer = std::ranges::find_if(m_timers, isDue); timer != m_timers.end();
             timer = std::ranges::find_if(m_timers, isDue))
            (*timer)->callOnce();
    }

private:
    struct FakeTimer final : Timer
    {
        FakeTimer(FakeClock &owner, Instant instant, std::function<void()> function)
            : clock(owner)
            , due(instant)
            , callBack(std::move(function))
        {
            clock.m_timers.push_back(this);
        }
        ~FakeTimer() override { std::erase(clock.m_timers, this); }
        FakeTimer(const FakeTimer &) = delete;
        FakeTimer &operator=(const FakeTimer &) = delete;

        void callOnce()
        {
            std::erase(clock.m_timers, this);
            const auto last = std::move(callBack); // The call may destroy this timer.
            last();
        }

        FakeClock &clock;
        Instant due;
        std::function<void()> callBack;
    };

    Instant m_now = fromUnixNumber(1'714'566'600).value(); // 2024-05-01 12:30:00 UTC
    QTimeZone m_zone{"Asia/Tokyo"}; // off UTC, so that a missed conversion shows
    std::vector<FakeTimer *> m_timers;
};

} // namespace tallyglass::test
