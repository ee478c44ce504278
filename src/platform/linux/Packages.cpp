#include "platform/Files.h"

namespace tallyglass {

/// Linux has no packages, but home folders travel.
bool isPackage(const std::string &path)
{
    return hasPackageExtension(path);
}

} // namespace tallyglass
