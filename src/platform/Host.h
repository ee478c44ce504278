#pragma once

#include "model/UsageProvider.h"

#include <QString>
#include <QStringList>

#include <array>

namespace tallyglass {

/// Where everything of ours is, below the home folder: on every system one path for the bridge, the
/// widget and the help pages.
inline constexpr const char *ownFolder = "Library/Application Support/Tallyglass";
/// There, the limits that the status line bridge passes on.
inline constexpr const char *statuslineFile = "statusline_rate_limits.json";

/// The facts of the machine and of the running program that others are computed from.
struct Host
{
    QString homeFolder;
    QString temporaryFolder;
    QStringList searchPath; ///< the folders of PATH, in order
    /// Where the environment tells each tool to keep its data; empty where it does not.
    std::array<QString, allProviders.size()> movedHomes;

    QString bundleIdentifier; ///< empty when the program runs without a bundle
    QString shortVersion; ///< "1.4.0", empty when unknown
    QString buildVersion; ///< "104", empty when unknown
    QString claudeApi; ///< scheme and host of the Claude API, as the build states it
    QString feedUrl; ///< of the update feed, as the build states it; may be empty or no URL
    QString publicKey; ///< that updates are signed with, as the build states it
};

} // namespace tallyglass
