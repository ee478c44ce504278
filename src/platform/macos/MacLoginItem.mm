#include "platform/macos/MacLoginItem.h"

#include "model/DisplayTexts.h"

#import <ServiceManagement/ServiceManagement.h>

namespace tallyglass {

namespace {

bool needsApproval()
{
    return SMAppService.mainAppService.status == SMAppServiceStatusRequiresApproval;
}

std::optional<QString> describe(NSError *error)
{
    return QString::fromNSString(error.localizedDescription);
}

} // namespace

bool MacLoginItem::isEnabled() const
{
    return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
}

std::optional<QString> MacLoginItem::setEnabled(bool enabled)
{
    NSError *error = nil;
    if (!enabled)
        return [SMAppService.mainAppService unregisterAndReturnError:&error] ? std::nullopt
                                                                             : describe(error);

    // Whoever has switched it off in the system settings can switch it on only there; registering
    // then fails as well, with a text that does not say so.
    const bool isRegistered = [SMAppService.mainAppService registerAndReturnError:&error];
    if (needsApproval()) {
        [SMAppService openSystemSettingsLoginItems];
        return displayText("settings.launchAtLogin.needsApproval");
    }
    return isRegistered ? std::nullopt : describe(error);
}

} // namespace tallyglass
