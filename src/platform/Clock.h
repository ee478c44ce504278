#pragma once

#include "model/Instant.h"

#include <QCoroTask>
#include <QTimeZone>

namespace tallyglass {

/// What time it is and how to wait. The only source of time below app/.
class Clock
{
public:
    virtual ~Clock();

    virtual Instant now() const = 0;
    /// The user's zone at this moment; it may change while the program runs.
    virtual QTimeZone zone() const = 0;
    /// Resumes on the calling thread's event loop, never before \a duration has passed.
    virtual QCoro::Task<> sleepFor(std::chrono::milliseconds duration) = 0;
};

} // namespace tallyglass
