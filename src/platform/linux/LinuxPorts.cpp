#include "platform/linux/LinuxPorts.h"

#include "platform/qt/ProcessGroupRunner.h"
#include "platform/qt/QtHttpClient.h"
#include "platform/qt/SystemClock.h"

#include <QCoreApplication>
#include <QDir>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace tallyglass {

namespace {

/// Where the user's programs keep their settings: $XDG_CONFIG_HOME when that is a full path, as the
/// desktop's rules demand, else ".config" in the home folder.
QString configFolder(const QString &homeFolder)
{
    const QString chosen = qEnvironmentVariable("XDG_CONFIG_HOME");
    return QDir::isAbsolutePath(chosen) ? QDir::cleanPath(chosen)
                                        : homeFolder + QStringLiteral("/.config");
}

/// For a child to run before its program: the system then kills it when we are killed ourselves.
/// The system watches the thread that started the child, so that must be one that lasts.
std::function<void()> dieWithThisProcess()
{
    return [parent = getpid()] {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // Killed before the system was told: nobody would tell us any more.
        if (getppid() != parent)
            raise(SIGKILL);
    };
}

Host makeHost(const QString &homeFolder)
{
    return {.homeFolder = homeFolder,
            .temporaryFolder = QDir::tempPath(),
            .searchPath = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts),
            .bundleIdentifier = QStringLiteral(TALLYGLASS_BUNDLE_ID),
            .shortVersion = QStringLiteral(TALLYGLASS_VERSION),
            .buildVersion = QStringLiteral(TALLYGLASS_BUILD),
            .claudeApi = QStringLiteral(TALLYGLASS_CLAUDE_API),
            .feedUrl = QStringLiteral(TALLYGLASS_FEED_URL),
            .publicKey = QStringLiteral(TALLYGLASS_PUBLIC_KEY)};
}

} // namespace

Ports makePorts(const QString &homeFolder)
{
    Ports ports{.host = makeHost(homeFolder)};
    const QString config = configFolder(homeFolder);
    ports.clock = std::make_unique<SystemClock>();
    ports.http = std::make_unique<QtHttpClient>();
    // Not this program but the command beside it, which desktops write when they add an entry.
    ports.loginItem = makeAutostartEntry(
        {.configFolder = config,
         .program = QCoreApplication::applicationDirPath() + QStringLiteral("/tallyglass"),
         .searchPath = ports.host.searchPath});
    ports.notifier = makeDesktopNotifier();
    ports.processes = std::make_unique<ProcessGroupRunner>(dieWithThisProcess());
    ports.sleepWatch = makeLogindSleepWatch();
    ports.defaults = makeSettingsFile(config + QStringLiteral("/Tallyglass.conf"));
    // No keychain: the command-line tools keep their secrets in files here.
    return ports;
}

} // namespace tallyglass
