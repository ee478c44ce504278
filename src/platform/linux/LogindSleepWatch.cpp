#include "platform/linux/LogindSleepWatch.h"

#include <QDBusConnection>

namespace tallyglass {

LogindSleepWatch::LogindSleepWatch()
{
    QDBusConnection::systemBus().connect(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"), this,
        SLOT(prepareForSleep(bool)));
}

/// Sent before the machine falls asleep and again when it has woken.
void LogindSleepWatch::prepareForSleep(bool begins)
{
    if (!begins)
        Q_EMIT woke();
}

} // namespace tallyglass
