#include "model/DisplayTexts.h"
#include "platform/macos/MacPorts.h"

#import <ServiceManagement/ServiceManagement.h>

namespace tallyglass {

namespace {

bool hasStatus(SMAppServiceStatus status)
{
    return SMAppService.mainAppService.status == status;
}

class MacLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override;
    std::optional<QString> pendingStep() const override;
    std::optional<QString> setEnabled(bool enabled) override;
};

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

} // namespace

std::unique_ptr<LoginItem> makeMacLoginItem()
{
    return std::make_unique<MacLoginItem>();
}

} // namespace tallyglass
