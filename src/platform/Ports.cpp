#include "platform/Ports.h"

namespace tallyglass {

// Each here, so that its table of virtual functions exists once.
Clock::~Clock() = default;
HttpClient::~HttpClient() = default;
Keychain::~Keychain() = default;
LoginItem::~LoginItem() = default;
ProcessRunner::~ProcessRunner() = default;
Timer::~Timer() = default;
UserDefaults::~UserDefaults() = default;
WidgetCentre::~WidgetCentre() = default;

} // namespace tallyglass
