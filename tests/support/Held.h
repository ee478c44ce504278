#pragma once

#include "platform/Wakeup.h"

#include <QCoroTask>
#include <QSet>

namespace tallyglass::test {

/// Keeps coroutines waiting until it lets them go, at its end at the latest.
class Held
{
public:
    Held() = default;
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;
    ~Held() { letGo(); }

    QCoro::Task<> pass(bool isHeld)
    {
        if (!isHeld)
            co_return;
        Wakeup wakeup;
        m_waiting.insert(&wakeup);
        co_await wakeup;
        m_waiting.remove(&wakeup);
    }
    void letGo()
    {
        while (!m_waiting.isEmpty())
            (*m_waiting.begin())->happen();
    }

private:
    QSet<Wakeup *> m_waiting;
};

} // namespace tallyglass::test
