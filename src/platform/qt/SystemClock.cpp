#include "platform/qt/SystemClock.h"

#include <QTimer>

#include <algorithm>

namespace tallyglass {

SystemClock::~SystemClock()
{
    while (!m_sleepers.isEmpty())
        (*m_sleepers.begin())->happen();
}

Instant SystemClock::now() const
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

QTimeZone SystemClock::zone() const
{
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return zone.isValid() ? zone : QTimeZone::utc();
}

QCoro::Task<> SystemClock::sleepFor(std::chrono::milliseconds duration)
{
    Wakeup wakeup;
    QTimer timer;
    // A coarse timer may be early by a twentieth.
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, &timer, [&wakeup] { wakeup.happen(); });
    timer.start(std::max(duration, std::chrono::milliseconds{0}));

    m_sleepers.insert(&wakeup);
    co_await wakeup;
    m_sleepers.remove(&wakeup);
}

} // namespace tallyglass
