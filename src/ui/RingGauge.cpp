#include "ui/RingGauge.h"

#include <QPainter>

#include <algorithm>

namespace tallyglass {

namespace {

constexpr double miterLimit = 10;
constexpr double fullCircle = 360.0 * 16; // QPainter counts sixteenths of a degree

} // namespace

RingGauge::RingGauge(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &RingGauge::changed, this, [this] { update(); });
}

void RingGauge::paint(QPainter *painter)
{
    const double side = std::min(width(), height()) - m_lineWidth;
    QRectF circle(0, 0, side, side);
    circle.moveCenter(boundingRect().center());

    QColor track = m_trackColor;
    track.setAlphaF(track.alphaF() * static_cast<float>(m_trackOpacity));
    QPen pen(track, m_lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setMiterLimit(miterLimit);
    painter->setPen(pen);
    painter->drawEllipse(circle);

    const double share = std::clamp(m_percent, 0.0, 1.0);
    if (share <= 0)
        return;
    pen.setColor(m_tint);
    pen.setCapStyle(Qt::RoundCap);
    painter->setPen(pen);
    painter->drawArc(circle, static_cast<int>(fullCircle / 4),
                     -std::max(1, qRound(share * fullCircle)));
}

} // namespace tallyglass
