#include "platform/Ports.h"

#include "platform/MenuBarItem.h"

namespace tallyglass {

// Each here, so that its table of virtual functions exists once.
Clock::~Clock() = default;
HttpClient::~HttpClient() = default;
Keychain::~Keychain() = default;
LoginItem::~LoginItem() = default;
MenuBarItem::~MenuBarItem() = default;
Notifier::~Notifier() = default;
ProcessRunner::~ProcessRunner() = default;
SleepWatch::~SleepWatch() = default;
UpdaterEngine::~UpdaterEngine() = default;
UserDefaults::~UserDefaults() = default;
WidgetCentre::~WidgetCentre() = default;

} // namespace tallyglass
