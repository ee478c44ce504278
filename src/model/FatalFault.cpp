#include "model/FatalFault.h"

#include <cstdio>
#include <cstdlib>

namespace tallyglass {

void stopProgram(const char *reason)
{
    std::fprintf(stderr, "tallyglass: %s\n", reason);
    // No destructors and no exit handlers: other threads may still be at work on what they own.
    std::_Exit(70);
}

} // namespace tallyglass
