#include "platform/qt/SystemClock.h"

#include <QTimer>

#include <algorithm>

namespace tallyglass {

namespace {

class SystemTimer final : public Timer
{
public:
    SystemTimer(std::chrono::milliseconds duration, std::function<void()> callBack)
    {
        // A coarse timer may be early by a twentieth.
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, std::move(callBack));
        m_timer.start(std::max(duration, std::chrono::milliseconds{0}));
    }

private:
    QTimer m_timer;
};

} // namespace

Instant SystemClock::now() const
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

QTimeZone SystemClock::zone() const
{
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return zone.isValid() ? zone : QTimeZone::utc();
}

std::unique_ptr<Timer> SystemClock::callAfter(std::chrono::milliseconds duration,
                                              std::function<void()> callBack)
{
    return std::make_unique<SystemTimer>(duration, std::move(callBack));
}

} // namespace tallyglass
