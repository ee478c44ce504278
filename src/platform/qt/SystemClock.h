#pragma once

#include "platform/Clock.h"

namespace tallyglass {

/// The machine's clock. The time may be asked on any thread.
class SystemClock final : public Clock
{
public:
    Instant now() const override;
    QTimeZone zone() const override;
    std::unique_ptr<Timer> callAfter(std::chrono::milliseconds duration,
                                     std::function<void()> callBack) override;
};

} // namespace tallyglass
