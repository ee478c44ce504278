#pragma once

#include "platform/SleepWatch.h"

namespace tallyglass {

/// Told by the login manager over the system bus; where there is none, nothing is noticed.
class LogindSleepWatch final : public SleepWatch
{
    Q_OBJECT

public:
    LogindSleepWatch();

private Q_SLOTS:
    void prepareForSleep(bool begins);
};

} // namespace tallyglass
