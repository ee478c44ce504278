#pragma once

#include "platform/ProcessRunner.h"
#include "platform/Wakeup.h"

#include <QProcess>
#include <QTimer>

#include <functional>
#include <sys/types.h>

namespace tallyglass {

/// A running program and its descendants, as far as they stay in its process group.
class ProcessGroup
{
public:
    ProcessGroup(const ProcessJob &job, const std::function<void()> &prepareChild);

    /// Kills the group and ends, inside the call.
    void abandon();
    /// Once ended: whether the program exited with status 0 before its deadline.
    bool hasSucceeded() const;

    Wakeup ended;

private:
    void askToEnd();
    void killGroup();

    pid_t m_id = 0; ///< of the leader and of the group; 0 while there is none
    bool m_isInTime = true;
    QProcess m_leader;
    QTimer m_timer; ///< until the deadline, then until patience ends
};

} // namespace tallyglass
