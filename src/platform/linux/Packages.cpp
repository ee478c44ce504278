#include "platform/Folders.h"

#include <QString>

#include <algorithm>
#include <array>

namespace tallyglass {

namespace {

/// Extensions of folders that macOS shows as one thing. Linux knows none, but home folders travel.
constexpr std::array<QLatin1String, 17> packageExtensions{
    QLatin1String("app"),           QLatin1String("bundle"),    QLatin1String("framework"),
    QLatin1String("plugin"),        QLatin1String("appex"),     QLatin1String("xpc"),
    QLatin1String("kext"),          QLatin1String("prefpane"),  QLatin1String("qlgenerator"),
    QLatin1String("mdimporter"),    QLatin1String("pkg"),       QLatin1String("mpkg"),
    QLatin1String("photoslibrary"), QLatin1String("rtfd"),      QLatin1String("xcodeproj"),
    QLatin1String("xcworkspace"),   QLatin1String("playground")};

} // namespace

bool isPackage(const std::string &path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t stop = name.rfind('.');
    if (stop == std::string::npos || stop == 0)
        return false; // A name that only begins with a full stop has no extension.
    const QLatin1String extension(name.data() + stop + 1);
    return std::ranges::any_of(packageExtensions, [extension](QLatin1String known) {
        return known.compare(extension, Qt::CaseInsensitive) == 0;
    });
}

} // namespace tallyglass
