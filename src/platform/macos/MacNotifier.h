#pragma once

#include "platform/Notifier.h"

@class TGNotificationPresenter;

namespace tallyglass {

/// Hands notifications to the system's centre, which drops them without permission. Programs
/// without a bundle have no centre: there nothing is posted.
class MacNotifier final : public Notifier
{
public:
    MacNotifier();

    void requestPermission() override;
    void post(const Notification &notification) override;

private:
    TGNotificationPresenter *m_presenter; ///< nil without a bundle; the centre does not keep it
};

} // namespace tallyglass
