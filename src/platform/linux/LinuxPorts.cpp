#include "platform/NoKeychain.h"
#include "platform/Ports.h"
#include "platform/linux/AutostartEntry.h"
#include "platform/linux/ConfigFolder.h"
#include "platform/linux/DeathSignal.h"
#include "platform/linux/DesktopNotifier.h"
#include "platform/linux/LogindSleepWatch.h"
#include "platform/linux/SettingsFile.h"
#include "platform/qt/ProcessGroupRunner.h"
#include "platform/qt/QtHttpClient.h"
#include "platform/qt/SystemClock.h"

#include <QCoreApplication>
#include <QDir>

namespace tallyglass {

namespace {

class NoWidgetCentre final : public WidgetCentre
{
public:
    void reloadAllTimelines() override { }
};

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
    // The command-line tools keep their secrets in files here.
    ports.keychain = std::make_unique<NoKeychain>();
    // Not this program but the command beside it, which desktops write when they add an entry.
    ports.loginItem = std::make_unique<AutostartEntry>(AutostartEntry::Facts{
        .configFolder = config,
        .program = QCoreApplication::applicationDirPath() + QStringLiteral("/tallyglass"),
        .searchPath = ports.host.searchPath});
    ports.notifier = std::make_unique<DesktopNotifier>();
    ports.processes = std::make_unique<ProcessGroupRunner>(dieWithThisProcess());
    ports.sleepWatch = std::make_unique<LogindSleepWatch>();
    ports.defaults = std::make_unique<SettingsFile>(config + QStringLiteral("/Tallyglass.conf"));
    ports.widgets = std::make_unique<NoWidgetCentre>();
    return ports;
}

} // namespace tallyglass
