#pragma once

#include "platform/Clock.h"
#include "platform/Host.h"
#include "platform/HttpClient.h"
#include "platform/Keychain.h"
#include "platform/LoginItem.h"
#include "platform/Notifier.h"
#include "platform/ProcessRunner.h"
#include "platform/SleepWatch.h"
#include "platform/UpdaterEngine.h"
#include "platform/UserDefaults.h"
#include "platform/WidgetCentre.h"

#include <memory>

namespace tallyglass {

/// Everything that the program asks of the machine. The application owns one, tests another.
struct Ports
{
    Host host;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<HttpClient> http;
    std::unique_ptr<Keychain> keychain;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<Notifier> notifier;
    std::unique_ptr<ProcessRunner> processes;
    std::unique_ptr<SleepWatch> sleepWatch;
    std::unique_ptr<UserDefaults> defaults;
    std::unique_ptr<WidgetCentre> widgets;
    std::unique_ptr<UpdaterEngine> updater; ///< null where the build has none
};

/// The ports of this system. \a homeFolder stands for the user's in every one of them.
Ports makePorts(const QString &homeFolder);

} // namespace tallyglass
