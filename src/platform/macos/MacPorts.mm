#include "platform/Ports.h"
#include "platform/macos/BundleFacts.h"
#include "platform/macos/MacKeychain.h"
#include "platform/macos/MacLoginItem.h"
#include "platform/macos/MacNotifier.h"
#include "platform/macos/MacSleepWatch.h"
#include "platform/macos/MacUserDefaults.h"
#include "platform/macos/MacWidgetCentre.h"
#include "platform/qt/ProcessGroupRunner.h"
#include "platform/qt/QtHttpClient.h"
#include "platform/qt/SystemClock.h"
#ifdef TALLYGLASS_HAS_SPARKLE
#include "platform/macos/SparkleUpdaterEngine.h"
#endif

#include <QDir>

namespace tallyglass {

namespace {

Host makeHost(const QString &homeFolder)
{
    Host host{.homeFolder = homeFolder,
              .temporaryFolder = QDir::tempPath(),
              .searchPath = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts),
              .claudeApi = QStringLiteral(TALLYGLASS_CLAUDE_API)};
    readBundleFacts(host);
    return host;
}

} // namespace

Ports makePorts(const QString &homeFolder)
{
    Ports ports{.host = makeHost(homeFolder)};
    ports.clock = std::make_unique<SystemClock>();
    ports.http = std::make_unique<QtHttpClient>();
    ports.keychain = std::make_unique<MacKeychain>();
    ports.loginItem = std::make_unique<MacLoginItem>();
    ports.notifier = std::make_unique<MacNotifier>();
    ports.processes = std::make_unique<ProcessGroupRunner>();
    ports.sleepWatch = std::make_unique<MacSleepWatch>();
    ports.defaults = std::make_unique<MacUserDefaults>(homeFolder == QDir::homePath()
                                                           ? MacUserDefaults::Kept::Always
                                                           : MacUserDefaults::Kept::WhileRunning);
    ports.widgets = std::make_unique<MacWidgetCentre>();
#ifdef TALLYGLASS_HAS_SPARKLE
    ports.updater = std::make_unique<SparkleUpdaterEngine>();
#endif
    return ports;
}

} // namespace tallyglass
