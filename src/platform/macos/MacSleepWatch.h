#pragma once

#include "platform/SleepWatch.h"

#import <Foundation/Foundation.h>

namespace tallyglass {

/// Told by the workspace.
class MacSleepWatch final : public SleepWatch
{
public:
    MacSleepWatch();
    ~MacSleepWatch() override;

private:
    id<NSObject> m_observer;
};

} // namespace tallyglass
