#include "platform/macos/MacLoginItem.h"

#include "model/DisplayTexts.h"

#import <ServiceManagement/ServiceManagement.h>

namespace tallyglass {

namespace {

bool hasStatus(SMAppServiceStatus status)
{
    return SMAppService.mainAppService.status == status;
}

} // namespace

bool MacLoginItem::isEnabled() const
{
    return hasStatus(SMAppServiceStatusEnabled);
}

std::optional<QString> MacLoginItem::pendingStep() const
{
    if (!hasStatus(SMAppServiceStatusRequiresApproval))
        return std::nullopt;
    return displayText("settings.launchAtLogin.needsApproval");
}

std::optional<QString> MacLoginItem::setEnabled(bool enabled)
{
    SMAppService *service = SMAppService.mainAppService;
    NSError *error = nil;
    const bool isDone = enabled ? [service registerAndReturnError:&error]
                                : [service unregisterAndReturnError:&error];
    // What was switched off in the system settings can only be switched on there. Registering then
    // fails, with a text that does not say so.
    if (enabled && hasStatus(SMAppServiceStatusRequiresApproval)) {
        [SMAppService openSystemSettingsLoginItems];
        return std::nullopt;
    }
    return isDone ? std::nullopt : std::optional{QString::fromNSString(error.localizedDescription)};
}

} // namespace tallyglass
