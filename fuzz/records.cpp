// The walk through records finds in lines and documents what the plain reader does.

#include "LogFile.h"

using namespace tallyglass;

/// The first byte says of what tool and kind the file is.
extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto provider = (data[0] & 1) != 0 ? UsageProvider::Claude : UsageProvider::Codex;
    fuzz::compareReaders(provider, (data[0] & 2) != 0,
                         QByteArray(data + 1, static_cast<qsizetype>(size) - 1));
    return 0;
}
