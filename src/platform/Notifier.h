#pragma once

#include <QString>

namespace tallyglass {

struct Notification
{
    QString identifier;
    QString title;
    QString body; ///< plain text

    bool operator==(const Notification &) const = default;
};

/// The desktop's notifications.
class Notifier
{
public:
    virtual ~Notifier();

    /// Asks the user, where the system wants that, for permission to show alerts and play sounds.
    virtual void requestPermission() = 0;
    /// Shows a notification at once, with the default sound. Returns without waiting; one that
    /// cannot be shown is dropped.
    virtual void post(const Notification &notification) = 0;
};

} // namespace tallyglass
