#pragma once

#include "platform/Clock.h"
#include "platform/Wakeup.h"

#include <QSet>

namespace tallyglass {

/// The machine's clock. Sleeps only on the thread that owns it; the time may be asked on any.
class SystemClock final : public Clock
{
public:
    SystemClock() = default;
    SystemClock(const SystemClock &) = delete;
    SystemClock &operator=(const SystemClock &) = delete;
    /// Wakes whoever still sleeps, so that no frame outlives the program's objects.
    ~SystemClock() override;

    Instant now() const override;
    QTimeZone zone() const override;
    QCoro::Task<> sleepFor(std::chrono::milliseconds duration) override;

private:
    QSet<Wakeup *> m_sleepers;
};

} // namespace tallyglass
