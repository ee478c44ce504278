#include "platform/linux/LinuxPorts.h"

#include <QDBusConnection>

namespace tallyglass {

namespace {

class LogindSleepWatch final : public SleepWatch
{
    Q_OBJECT

public:
    LogindSleepWatch();

private Q_SLOTS:
    void prepareForSleep(bool begins);
};

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

} // namespace

std::unique_ptr<SleepWatch> makeLogindSleepWatch()
{
    return std::make_unique<LogindSleepWatch>();
}

} // namespace tallyglass

#include "LogindSleepWatch.moc"
