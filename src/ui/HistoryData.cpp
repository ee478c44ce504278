#include "ui/HistoryData.h"

#include "model/Formatting.h"
#include "model/LocalTime.h"
#include "ui/ProviderColors.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

/// Samples come at least ten minutes apart; a pause of three times that is one of the program.
constexpr auto longestStep = 30min;
/// Positions across that can be told apart: the chart's pixels, about.
constexpr int columns = 320;
constexpr auto hoursBetweenTicks = 6h;

std::chrono::milliseconds length(HistoryRange range)
{
    return range == HistoryRange::Day ? 24h : 7 * 24h;
}

QString dayName(LocalTime time)
{
    const std::chrono::weekday day{std::chrono::floor<std::chrono::days>(time)};
    return QLocale().dayName(static_cast<int>(day.iso_encoding()), QLocale::ShortFormat);
}

double share(Instant date, const HistoryData &data)
{
    return static_cast<double>((date - data.start).count())
        / static_cast<double>((data.end - data.start).count());
}

int column(const HistoryPoint &point)
{
    return static_cast<int>(point.x * columns);
}

/// Keeps the first, lowest, highest and last point of each column: what a line through all of them
/// would have covered.
std::vector<HistoryPoint> thinned(const std::vector<HistoryPoint> &points)
{
    std::vector<HistoryPoint> kept;
    for (auto first = points.begin(); first != points.end();) {
        const auto end = std::find_if(first, points.end(), [first](const HistoryPoint &point) {
            return column(point) != column(*first);
        });
        const auto [lowest, highest] =
            std::minmax_element(first, end, [](const auto &a, const auto &b) { return a.y < b.y; });
        std::vector picked{first, std::min(lowest, highest), std::max(lowest, highest), end - 1};
        picked.erase(std::ranges::unique(picked).begin(), picked.end());
        for (const auto &point : picked)
            kept.push_back(*point);
        first = end;
    }
    return kept;
}

HistoryLine historyLine(UsageProvider provider, const std::vector<UsageHistorySample> &samples,
                        const HistoryData &data)
{
    HistoryLine line{.name = shortName(provider), .tint = providerColor(provider)};
    std::optional<Instant> previous;
    for (const UsageHistorySample &sample : samples) {
        // A date that lies ahead was stored before the clock was set back.
        if (sample.provider != provider || sample.date < data.start || sample.date > data.end)
            continue;
        if (!previous || sample.date - *previous > longestStep)
            line.runs.emplace_back();
        const double percent =
            data.range == HistoryRange::Day ? sample.fiveHourPercent : sample.weekPercent;
        line.runs.back().push_back({share(sample.date, data), std::clamp(percent, 0.0, 1.0)});
        previous = sample.date;
    }
    for (auto &run : line.runs)
        run = thinned(run);
    return line;
}

/// Every six hours of the day, or every midnight, that a clock shows within the range.
std::vector<HistoryTick> historyTicks(const HistoryData &data)
{
    const std::chrono::hours step = data.range == HistoryRange::Day ? hoursBetweenTicks : 24h;
    std::vector<HistoryTick> ticks;
    const auto midnight = std::chrono::floor<std::chrono::days>(toLocalTime(data.start, data.zone));
    for (LocalTime time = midnight;; time += step) {
        const Instant date = firstInstantFrom(time, data.zone);
        if (date > data.end)
            return ticks;
        if (date < data.start)
            continue;
        ticks.push_back(
            {share(date, data),
             data.range == HistoryRange::Day ? formatClockTime(date, data.zone) : dayName(time)});
    }
}

} // namespace

QString timeText(const HistoryData &data, double x)
{
    const auto passed = static_cast<double>((data.end - data.start).count()) * x;
    const Instant date = data.start + std::chrono::milliseconds(std::llround(passed));
    const QString time = formatClockTime(date, data.zone);
    return data.range == HistoryRange::Day ? time
                                           : dayName(toLocalTime(date, data.zone)) + u' ' + time;
}

HistoryData historyData(const std::vector<UsageHistorySample> &samples, HistoryRange range,
                        Instant now, const QTimeZone &zone)
{
    HistoryData data;
    data.range = range;
    data.start = now - length(range);
    data.end = now;
    data.zone = zone;
    data.ticks = historyTicks(data);
    QStringList newest;
    for (const UsageProvider provider : allProviders) {
        HistoryLine line = historyLine(provider, samples, data);
        if (line.runs.empty())
            continue;
        newest += line.name + u' ' + formatPercent(line.runs.back().back().y);
        data.lines.push_back(std::move(line));
    }
    data.summaryText = newest.join(QStringLiteral(", "));
    return data;
}

} // namespace tallyglass
