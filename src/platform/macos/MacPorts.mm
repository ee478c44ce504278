#include "platform/macos/MacPorts.h"

#include "platform/qt/ProcessGroupRunner.h"
#include "platform/qt/QtHttpClient.h"
#include "platform/qt/SystemClock.h"

#include <QDir>

#import <AppKit/AppKit.h>

#ifdef TALLYGLASS_HAS_WIDGETS
extern "C" void tallyglassReloadAllTimelines(void); // WidgetReload.swift
#endif

namespace tallyglass {

namespace {

/// What the information dictionary of the running bundle states. What it lacks, or states as
/// anything but text, stays empty.
QString bundleText(NSString *key)
{
    const id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    return [value isKindOfClass:NSString.class] ? QString::fromNSString(value) : QString();
}

Host makeHost(const QString &homeFolder)
{
    return {.homeFolder = homeFolder,
            .temporaryFolder = QDir::tempPath(),
            .searchPath = qEnvironmentVariable("PATH").split(u':', Qt::SkipEmptyParts),
            .bundleIdentifier = QString::fromNSString(NSBundle.mainBundle.bundleIdentifier),
            .shortVersion = bundleText(@"CFBundleShortVersionString"),
            .buildVersion = bundleText(@"CFBundleVersion"),
            .claudeApi = QStringLiteral(TALLYGLASS_CLAUDE_API),
            .feedUrl = bundleText(@"SUFeedURL"),
            .publicKey = bundleText(@"SUPublicEDKey")};
}

/// Told by the workspace.
class MacSleepWatch final : public SleepWatch
{
public:
    MacSleepWatch()
        : m_observer([NSWorkspace.sharedWorkspace.notificationCenter
              addObserverForName:NSWorkspaceDidWakeNotification
                          object:nil
                           queue:NSOperationQueue.mainQueue
                      usingBlock:^(NSNotification *) { Q_EMIT woke(); }])
    {
    }
    MacSleepWatch(const MacSleepWatch &) = delete;
    MacSleepWatch &operator=(const MacSleepWatch &) = delete;
    ~MacSleepWatch() override
    {
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:m_observer];
    }

private:
    id<NSObject> m_observer;
};

#ifdef TALLYGLASS_HAS_WIDGETS
class MacWidgetCentre final : public WidgetCentre
{
public:
    void reloadAllTimelines() override { tallyglassReloadAllTimelines(); }
};
#endif

} // namespace

Ports makePorts(const QString &homeFolder)
{
    Ports ports{.host = makeHost(homeFolder)};
    ports.clock = std::make_unique<SystemClock>();
    ports.http = std::make_unique<QtHttpClient>();
    ports.loginItem = makeMacLoginItem();
    ports.notifier = makeMacNotifier();
    ports.processes = std::make_unique<ProcessGroupRunner>();
    ports.sleepWatch = std::make_unique<MacSleepWatch>();
    ports.defaults = makeMacUserDefaults(homeFolder);
    ports.keychain = makeMacKeychain();
#ifdef TALLYGLASS_HAS_WIDGETS
    if (!ports.host.bundleIdentifier.isEmpty()) // The centre ends programs without a bundle.
        ports.widgets = std::make_unique<MacWidgetCentre>();
#endif
#ifdef TALLYGLASS_HAS_SPARKLE
    ports.updater = makeSparkleUpdaterEngine();
#endif
    return ports;
}

} // namespace tallyglass
