#include "model/Formatting.h"

#include "model/DisplayTexts.h"
#include "model/FatalFault.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <locale>
#include <sstream>

namespace tallyglass {

using namespace std::chrono;

namespace {

/// As C's "%.1f" does it, halves to even, but with a full stop in every locale.
QString fixedPoint(double value, int decimals)
{
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << std::fixed << std::setprecision(decimals) << value;
    return QString::fromStdString(out.str());
}

/// Time left in whole seconds, at least none.
seconds remaining(Instant resetDate, Instant now)
{
    return std::max(duration_cast<seconds>(resetDate - now), seconds{0});
}

/// The minutes of the running hour, but 1 in the last minute: no text says that none remain.
std::int64_t minutesShown(seconds left)
{
    return left < 1min ? 1 : left % 1h / 1min;
}

} // namespace

QString formatPercent(double fraction)
{
    if (!std::isfinite(fraction))
        stopProgram("a percentage is not finite");
    const double percent = fraction * 100;
    if (percent > 999)
        return QStringLiteral("999%+");

    // Three decimals first: 0.12 is stored as 12.000000000000002 and must not become 13.
    const double rounded = std::round(std::max(percent, 0.0) * 1000) / 1000;
    return QString::number(static_cast<int>(std::ceil(rounded))) + u'%';
}

QString formatTokenCount(std::int64_t count)
{
    if (count < 1'000)
        return QString::number(count);
    if (count < 1'000'000)
        return fixedPoint(static_cast<double>(count) / 1e3, 0) + u'K';
    return fixedPoint(static_cast<double>(count) / 1e6, 1) + u'M';
}

QString formatResetCountdown(Instant resetDate, Instant now)
{
    const seconds left = remaining(resetDate, now);
    const QLocale locale;
    if (left >= 24h) {
        return formatText(
            "reset.daysHours",
            {locale.toString(qint64{left / 24h}), locale.toString(qint64{left % 24h / 1h})});
    }
    if (left < 1h)
        return formatText("reset.minutes", {locale.toString(qint64{minutesShown(left)})});
    return formatText(
        "reset.hoursMinutes",
        {locale.toString(qint64{left / 1h}), locale.toString(qint64{left % 1h / 1min})});
}

QString formatCompactCountdown(Instant resetDate, Instant now)
{
    const seconds left = remaining(resetDate, now);
    if (left >= 24h)
        return QString::number(left / 24h) + u'd';
    if (left >= 1h)
        return QString::number(left / 1h) + u'h';
    return QString::number(minutesShown(left)) + u'm';
}

QString formatAge(Instant date, Instant now)
{
    const seconds age = remaining(now, date);
    const QLocale locale;
    if (age >= 24h)
        return formatText("age.days.format", {locale.toString(qint64{age / 24h})});
    if (age >= 1h)
        return formatText("age.hours.format", {locale.toString(qint64{age / 1h})});
    return formatText("age.minutes.format", {locale.toString(qint64{age / 1min})});
}

QString formatClockTime(Instant date, const QTimeZone &zone)
{
    const auto local = QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), zone);
    return QLocale().toString(local.time(), QLocale::ShortFormat);
}

} // namespace tallyglass
