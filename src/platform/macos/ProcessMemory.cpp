#include "platform/ProcessMemory.h"

#include <sys/resource.h>

namespace tallyglass {

/// Programs that are not debuggers by their signature are kept out by the system itself.
void keepMemoryPrivate()
{
    const rlimit none{.rlim_cur = 0, .rlim_max = 0};
    setrlimit(RLIMIT_CORE, &none);
}

} // namespace tallyglass
