#include "platform/ProcessMemory.h"

#include <sys/prctl.h>

namespace tallyglass {

void keepMemoryPrivate()
{
    prctl(PR_SET_DUMPABLE, 0);
}

} // namespace tallyglass
