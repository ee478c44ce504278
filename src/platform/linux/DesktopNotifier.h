#pragma once

#include "platform/Notifier.h"

#include <QDBusConnection>
#include <QObject>

namespace tallyglass {

/// Hands notifications to the desktop's daemon over the session bus. Waits for neither: where one
/// is missing or silent, the notification is dropped.
class DesktopNotifier final : public Notifier
{
public:
    void requestPermission() override;
    void post(const Notification &notification) override;

private:
    void askForCapabilities(const QDBusConnection &bus, const Notification &notification);

    QObject m_waits; ///< what is waited for goes with us
};

} // namespace tallyglass
