#pragma once

#include "model/Instant.h"
#include "model/UsageHistorySample.h"

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QTimeZone>
#include <QtQml/qqmlregistration.h>

#include <vector>

namespace tallyglass {

/// What the chart spans, and which figure it draws: of the five hours over a day, of the week over
/// a week.
enum class HistoryRange : std::uint8_t { Day, Week };

/// A point in the chart, both from 0 to 1: across the range, and up to the whole limit.
struct HistoryPoint
{
    double x = 0;
    double y = 0;

    bool operator==(const HistoryPoint &) const = default;
};

/// One provider's curve. It is broken where the program was not running.
struct HistoryLine
{
    QString name;
    QColor tint;
    std::vector<std::vector<HistoryPoint>> runs;

    bool operator==(const HistoryLine &) const = default;
};

struct HistoryTick
{
    double x = 0; ///< from 0 to 1
    QString label;

    bool operator==(const HistoryTick &) const = default;
};

/// What the history chart draws, ready but for the scale.
struct HistoryData
{
    Q_GADGET
    QML_VALUE_TYPE(historyData)
    Q_PROPERTY(bool isEmpty READ isEmpty CONSTANT)
    Q_PROPERTY(QString summaryText MEMBER summaryText CONSTANT)

public:
    HistoryRange range = HistoryRange::Day;
    Instant start;
    Instant end;
    QTimeZone zone; ///< of the ticks
    std::vector<HistoryLine> lines; ///< of providers that have any, in the order of allProviders
    std::vector<HistoryTick> ticks;
    QString summaryText; ///< the newest figures: "Codex 42%, Claude 7%"

    bool operator==(const HistoryData &) const = default;
    bool isEmpty() const { return lines.empty(); }
};

/// The time of day at a position across, with the day's name where the range has several.
QString timeText(const HistoryData &data, double x);

/// \a samples in the order of time. Of those that crowd one position across, as many stay as can be
/// told apart.
HistoryData historyData(const std::vector<UsageHistorySample> &samples, HistoryRange range,
                        Instant now, const QTimeZone &zone);

} // namespace tallyglass
