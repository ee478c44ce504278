#pragma once

#include "model/Instant.h"

#include <QTimeZone>

#include <functional>
#include <memory>

namespace tallyglass {

/// A call that is due later. Destroying it calls it off.
class Timer
{
public:
    virtual ~Timer();
};

/// What time it is and how to wait. The only source of time below app/.
class Clock
{
public:
    virtual ~Clock();

    virtual Instant now() const = 0;
    /// The user's zone at this moment; it may change while the program runs.
    virtual QTimeZone zone() const = 0;
    /// Calls back once, on the calling thread's event loop, never before \a duration has passed.
    /// The call may destroy its timer.
    [[nodiscard]] virtual std::unique_ptr<Timer> callAfter(std::chrono::milliseconds duration,
                                                           std::function<void()> callBack) = 0;
};

} // namespace tallyglass
