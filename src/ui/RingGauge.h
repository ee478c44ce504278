#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// A ring filled clockwise from twelve o'clock, wholly within its bounds.
class RingGauge : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    /// Fraction of the ring; below 0 draws none of it, above 1 all.
    Q_PROPERTY(double percent MEMBER m_percent NOTIFY changed FINAL)
    Q_PROPERTY(QColor tint MEMBER m_tint NOTIFY changed FINAL)
    Q_PROPERTY(double lineWidth MEMBER m_lineWidth NOTIFY changed FINAL)
    Q_PROPERTY(QColor trackColor MEMBER m_trackColor NOTIFY changed FINAL)
    Q_PROPERTY(double trackOpacity MEMBER m_trackOpacity NOTIFY changed FINAL)

public:
    explicit RingGauge(QQuickItem *parent = nullptr);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    double m_percent = 0;
    QColor m_tint = Qt::black;
    double m_lineWidth = 5;
    QColor m_trackColor = Qt::gray;
    double m_trackOpacity = 0.18;
};

} // namespace tallyglass
