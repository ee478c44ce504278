#pragma once

#include <QString>

namespace tallyglass {

/// Where the user's programs keep their settings: $XDG_CONFIG_HOME when that is a full path, as the
/// desktop's rules demand, else ".config" in the home folder.
QString configFolder(const QString &homeFolder);

} // namespace tallyglass
