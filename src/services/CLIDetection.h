#pragma once

#include "model/UsageProvider.h"
#include "platform/Host.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace tallyglass {

/// Whether one of the tools is installed, and what to do if not.
struct CLIInstallStatus
{
    UsageProvider provider = UsageProvider::Codex;
    QString executableName;
    std::optional<QString> detectedPath; ///< of the first executable found
    QString dataPath; ///< the folder in which the tool keeps its data
    QString installHint;
    std::optional<QString> integrationHint; ///< Claude Code: the state of the status line bridge

    bool operator==(const CLIInstallStatus &) const = default;
};

/// One status for each provider. Looks at files only and starts none of them.
std::vector<CLIInstallStatus> detectAll(const Host &host);

/// The first executable file among \a candidates (relative ones are below the home folder), then
/// among the folders of the search path, then among those of the Node version managers.
std::optional<QString> resolveExecutable(const Host &host, const QString &name,
                                         const QStringList &candidates);

/// The absolute folders of PATH, and then those where a desktop session's shorter PATH does not
/// look.
QStringList searchPathDirectories(const Host &host);

/// Where each installed version of Node keeps executables of that name.
QStringList versionManagerCandidates(const Host &host, const QString &name);

/// Whether Claude Code's settings name our bridge as the command of its status line.
bool claudeBridgeConfigured(const Host &host);

} // namespace tallyglass
