// The shutdown records of a Copilot session are read as the plain reader reads them.

#include "LogFile.h"

using namespace tallyglass;

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    fuzz::compareReaders(UsageProvider::Copilot, false,
                         QByteArray(data, static_cast<qsizetype>(size)));
    return 0;
}
