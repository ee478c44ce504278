#include "model/FatalFault.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace tallyglass {

thread_local const std::string *fileAtWork = nullptr;

void stopProgram(const char *reason)
{
    std::string line = "tallyglass: " + std::string(reason);
    if (fileAtWork)
        line += " in " + *fileAtWork;
    // One line, whatever the file is called.
    std::ranges::replace_if(
        line, [](unsigned char character) { return character < ' ' || character == 0x7f; }, '?');
    std::fprintf(stderr, "%s\n", line.c_str());
    // No destructors and no exit handlers: other threads may still be at work on what they own.
    std::_Exit(70);
}

} // namespace tallyglass
