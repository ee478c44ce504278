#pragma once

#include <coroutine>
#include <utility>

namespace tallyglass {

/// Something that happens once and that one coroutine waits for.
class Wakeup
{
public:
    /// Resumes the coroutine inside the call; whatever its frame owns may be gone afterwards.
    void happen()
    {
        m_hasHappened = true;
        if (const std::coroutine_handle<> waiter = std::exchange(m_waiter, nullptr))
            waiter.resume();
    }

    bool await_ready() const { return m_hasHappened; }
    void await_suspend(std::coroutine_handle<> waiter) { m_waiter = waiter; }
    void await_resume() const { }

private:
    bool m_hasHappened = false;
    std::coroutine_handle<> m_waiter;
};

} // namespace tallyglass
