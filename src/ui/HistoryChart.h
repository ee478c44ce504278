#pragma once

#include "ui/HistoryData.h"

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace tallyglass {

/// A line of the legend: whose curve it is, and its figure under the pointer.
struct HistoryLegendRow
{
    Q_GADGET
    QML_VALUE_TYPE(historyLegendRow)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QColor tint MEMBER tint CONSTANT)

public:
    QString text; ///< "Codex", under the pointer "Codex 42%"
    QColor tint;

    bool operator==(const HistoryLegendRow &) const = default;
};

/// The curves with their axes. Under the pointer it marks the nearest samples.
class HistoryChart : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(tallyglass::HistoryData history READ history WRITE setHistory NOTIFY changed FINAL)
    /// The pointer's position across; below 0 there is none.
    Q_PROPERTY(double pointerX READ pointerX WRITE setPointerX NOTIFY changed FINAL)
    Q_PROPERTY(QColor textColor MEMBER m_textColor NOTIFY changed FINAL)
    Q_PROPERTY(QColor gridColor MEMBER m_gridColor NOTIFY changed FINAL)
    Q_PROPERTY(double textSize MEMBER m_textSize NOTIFY changed FINAL) ///< pixels
    Q_PROPERTY(QList<tallyglass::HistoryLegendRow> legend READ legend NOTIFY changed FINAL)
    /// The time of the marked samples, empty when there are none.
    Q_PROPERTY(QString pointedTime READ pointedTime NOTIFY changed FINAL)

public:
    explicit HistoryChart(QQuickItem *parent = nullptr);

    const HistoryData &history() const { return m_history; }
    void setHistory(const HistoryData &history);
    double pointerX() const { return m_pointerX; }
    void setPointerX(double x);
    QList<HistoryLegendRow> legend() const;
    QString pointedTime() const;

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    QFont font() const;
    /// Where the curves are drawn: what the axes leave.
    QRectF plot() const;
    /// The position across, from 0 to 1, of the sample nearest to the pointer.
    std::optional<double> pointedX() const;
    QPointF toPixels(const HistoryPoint &point) const;
    void paintAxes(QPainter &painter) const;
    void paintLine(QPainter &painter, const HistoryLine &line) const;
    void paintPointer(QPainter &painter) const;

    HistoryData m_history;
    double m_pointerX = -1;
    QColor m_textColor = Qt::black;
    QColor m_gridColor = Qt::gray;
    double m_textSize = 11;
};

} // namespace tallyglass
