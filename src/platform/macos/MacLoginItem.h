#pragma once

#include "platform/LoginItem.h"

namespace tallyglass {

/// The application among the login items of the system settings. The system takes signed
/// applications only, and may want the user to approve one there first.
class MacLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override;
    std::optional<QString> pendingStep() const override;
    std::optional<QString> setEnabled(bool enabled) override;
};

} // namespace tallyglass
