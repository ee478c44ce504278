#include "ui/HistoryChart.h"

#include "model/Formatting.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>

namespace tallyglass {

namespace {

constexpr double curveWidth = 1.75;
constexpr double dotRadius = 3;
constexpr double labelGap = 4;
/// A curve answers for the pointed position when it has a sample this near: half an hour of a day.
constexpr double nearby = 0.02;
constexpr std::array gridShares{0.0, 0.5, 1.0};

/// The point of a curve nearest to a position across.
const HistoryPoint &nearestPoint(const HistoryLine &line, double x)
{
    const HistoryPoint *nearest = &line.runs.front().front();
    for (const auto &run : line.runs) {
        for (const HistoryPoint &point : run) {
            if (std::abs(point.x - x) < std::abs(nearest->x - x))
                nearest = &point;
        }
    }
    return *nearest;
}

} // namespace

HistoryChart::HistoryChart(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &HistoryChart::changed, this, [this] { update(); });
}

void HistoryChart::setHistory(const HistoryData &history)
{
    if (m_history == history)
        return;
    m_history = history;
    Q_EMIT changed();
}

void HistoryChart::setPointerX(double x)
{
    if (m_pointerX == x)
        return;
    m_pointerX = x;
    Q_EMIT changed();
}

QList<HistoryLegendRow> HistoryChart::legend() const
{
    const auto x = pointedX();
    QList<HistoryLegendRow> rows;
    for (const HistoryLine &line : m_history.lines) {
        HistoryLegendRow row;
        row.text = line.name;
        row.tint = line.tint;
        if (x) {
            const HistoryPoint &point = nearestPoint(line, *x);
            if (std::abs(point.x - *x) <= nearby)
                row.text += u' ' + formatPercent(point.y);
        }
        rows += row;
    }
    return rows;
}

QString HistoryChart::pointedTime() const
{
    const auto x = pointedX();
    return x ? timeText(m_history, *x) : QString();
}

QFont HistoryChart::font() const
{
    QFont font;
    font.setPixelSize(std::max(1, qRound(m_textSize)));
    return font;
}

QRectF HistoryChart::plot() const
{
    const QFontMetricsF metrics(font());
    const double percentWidth = metrics.horizontalAdvance(formatPercent(1)) + labelGap;
    const double tickHeight = metrics.height() + labelGap;
    // The topmost percentage stands beside its line and needs half its height above it.
    const double top = std::ceil(metrics.height() / 2);
    return {0, top, std::max(1.0, std::floor(width() - percentWidth)),
            std::max(1.0, std::floor(height() - top - tickHeight))};
}

std::optional<double> HistoryChart::pointedX() const
{
    if (m_pointerX < 0 || m_history.isEmpty())
        return std::nullopt;
    const double pointed = m_pointerX / plot().width();
    double nearest = nearestPoint(m_history.lines.front(), pointed).x;
    for (const HistoryLine &line : m_history.lines) {
        const double x = nearestPoint(line, pointed).x;
        if (std::abs(x - pointed) < std::abs(nearest - pointed))
            nearest = x;
    }
    return nearest;
}

QPointF HistoryChart::toPixels(const HistoryPoint &point) const
{
    const QRectF area = plot();
    return {area.left() + point.x * area.width(), area.bottom() - point.y * area.height()};
}

void HistoryChart::paint(QPainter *painter)
{
    paintAxes(*painter);
    painter->save();
    // Half a curve's width above 100 % and below 0 % is still curve.
    painter->setClipRect(plot().adjusted(0, -dotRadius, dotRadius, dotRadius));
    for (const HistoryLine &line : m_history.lines)
        paintLine(*painter, line);
    paintPointer(*painter);
    painter->restore();
}

void HistoryChart::paintAxes(QPainter &painter) const
{
    const QRectF area = plot();
    const QFontMetricsF metrics(font());
    painter.setFont(font());
    for (const double share : gridShares) {
        const double y = std::round(toPixels({0, share}).y());
        painter.fillRect(QRectF(area.left(), y, area.width(), 1), m_gridColor);
        const QRectF label(area.right() + labelGap, y - metrics.height() / 2,
                           width() - area.right() - labelGap, metrics.height());
        painter.setPen(m_textColor);
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, formatPercent(share));
    }
    double freeFrom = 0;
    for (const HistoryTick &tick : m_history.ticks) {
        const double x = std::round(toPixels({tick.x, 0}).x());
        painter.fillRect(QRectF(x, area.top(), 1, area.height()), m_gridColor);
        const double labelWidth = metrics.horizontalAdvance(tick.label);
        const double left = x - labelWidth / 2;
        // A label that would be cut off or touch the one before it is left out.
        if (left < freeFrom || left + labelWidth > width())
            continue;
        painter.drawText(QPointF(left, area.bottom() + labelGap + metrics.ascent()), tick.label);
        freeFrom = left + labelWidth + labelGap;
    }
}

void HistoryChart::paintLine(QPainter &painter, const HistoryLine &line) const
{
    for (const auto &run : line.runs) {
        if (run.size() == 1) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(line.tint);
            painter.drawEllipse(toPixels(run.front()), curveWidth, curveWidth);
            continue;
        }
        QPainterPath path(toPixels(run.front()));
        for (const HistoryPoint &point : run)
            path.lineTo(toPixels(point));
        painter.strokePath(path,
                           QPen(line.tint, curveWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
}

void HistoryChart::paintPointer(QPainter &painter) const
{
    const auto x = pointedX();
    if (!x)
        return;
    const QRectF area = plot();
    painter.fillRect(
        QRectF(std::round(area.left() + *x * area.width()), area.top(), 1, area.height()),
        m_textColor);
    painter.setPen(Qt::NoPen);
    for (const HistoryLine &line : m_history.lines) {
        const HistoryPoint &point = nearestPoint(line, *x);
        if (std::abs(point.x - *x) > nearby)
            continue;
        painter.setBrush(line.tint);
        painter.drawEllipse(toPixels(point), dotRadius, dotRadius);
    }
}

} // namespace tallyglass
