#include "platform/macos/MacSleepWatch.h"

#import <AppKit/AppKit.h>

namespace tallyglass {

MacSleepWatch::MacSleepWatch()
    : m_observer([NSWorkspace.sharedWorkspace.notificationCenter
          addObserverForName:NSWorkspaceDidWakeNotification
                      object:nil
                       queue:NSOperationQueue.mainQueue
                  usingBlock:^(NSNotification *) { Q_EMIT woke(); }])
{
}

MacSleepWatch::~MacSleepWatch()
{
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_observer];
}

} // namespace tallyglass
