#include "platform/linux/DeathSignal.h"

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace tallyglass {

std::function<void()> dieWithThisProcess()
{
    return [parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Killed before the system was told: nobody would tell us any more.
        if (getppid() != parent)
            raise(SIGKILL);
    };
}

} // namespace tallyglass
