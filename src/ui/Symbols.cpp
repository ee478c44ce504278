#include "ui/Symbols.h"

#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace tallyglass {

namespace {

constexpr double gridSize = 16; // units across a symbol, whose middle is at 0, 0
constexpr double strokeUnits = 1.3; // before it is rounded to whole pixels

/// A drawing on the symbols' grid. Every coordinate is brought to whole pixels, counted from the
/// middle: the middle of the drawing is the middle of a stroke, so lines are sharp on either side.
class Sketch
{
public:
    explicit Sketch(double pixels)
        : m_pixels(std::floor(pixels))
        , m_strokePixels(std::max(1.0, std::round(strokeUnits * pixels / gridSize - 0.2)))
    {
        // As odd as the stroke, or the line in the middle would fall between two pixels.
        if (std::fmod(m_pixels - m_strokePixels, 2) != 0)
            m_pixels -= 1;
    }

    /// The side of the drawing.
    double pixels() const { return m_pixels; }
    const QPainterPath &region() const { return m_region; }

    /// A line through points, straight and with round ends.
    void line(std::initializer_list<QPointF> points) { stroke(lineThrough(points)); }
    void outline(std::initializer_list<QPointF> points)
    {
        QPainterPath path = lineThrough(points);
        path.closeSubpath();
        stroke(path);
    }
    void circle(QPointF middle, double radius) { stroke(disc(snapped(middle), snapped(radius))); }
    void box(QPointF topLeft, QPointF bottomRight, double corner)
    {
        QPainterPath path;
        path.addRoundedRect({snapped(topLeft), snapped(bottomRight)}, corner * unit(),
                            corner * unit());
        stroke(path);
    }
    /// Angles in degrees, from three o'clock on, counted against the clock.
    void arc(double radius, double start, double length)
    {
        const double r = radius * unit();
        const QRectF square(-r, -r, 2 * r, 2 * r);
        QPainterPath path;
        path.arcMoveTo(square, start);
        path.arcTo(square, start, length);
        stroke(path);
    }
    void dot(QPointF middle, double radius) { m_region += disc(middle * unit(), radius * unit()); }
    void filledCircle(double radius) { m_region += disc({}, snapped(radius)); }
    void filled(std::initializer_list<QPointF> points)
    {
        QPainterPath path = lineThrough(points);
        path.closeSubpath();
        m_region = m_region.united(path).united(stroked(path, m_strokePixels * 2));
    }

    /// Takes a line, or a dot, out of what is drawn so far.
    void cutLine(std::initializer_list<QPointF> points, double strokes = 1.3)
    {
        m_region -= stroked(lineThrough(points), std::round(m_strokePixels * strokes));
    }
    void cutDot(QPointF middle, double radius)
    {
        m_region -= disc(middle * unit(), radius * unit());
    }

private:
    double unit() const { return m_pixels / gridSize; }
    double snapped(double units) const { return std::round(units * unit()); }
    QPointF snapped(QPointF point) const { return {snapped(point.x()), snapped(point.y())}; }

    QPainterPath lineThrough(std::initializer_list<QPointF> points) const
    {
        QPainterPath path(snapped(*points.begin()));
        for (const QPointF &point : points)
            path.lineTo(snapped(point));
        return path;
    }
    /// In pixels.
    static QPainterPath disc(QPointF middle, double radius)
    {
        QPainterPath path;
        path.addEllipse(middle, radius, radius);
        return path;
    }
    static QPainterPath stroked(const QPainterPath &path, double width)
    {
        QPainterPathStroker stroker;
        stroker.setWidth(width);
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        stroker.setCurveThreshold(0.05); // pixels; the ordinary one shows corners in circles
        return stroker.createStroke(path);
    }
    void stroke(const QPainterPath &path)
    {
        m_region.setFillRule(Qt::WindingFill);
        m_region.addPath(stroked(path, m_strokePixels));
    }

    double m_pixels;
    double m_strokePixels;
    QPainterPath m_region;
};

/// A dial of three quarters of a circle, with the needle at two thirds.
void drawGauge(Sketch &sketch)
{
    constexpr double dotDistance = 4.3;
    constexpr double needleLength = 4.6;
    const auto onDial = [](double share, double distance) {
        const double angle = (1.25 - 1.5 * share) * std::numbers::pi;
        return QPointF(std::cos(angle), -std::sin(angle)) * distance;
    };
    sketch.circle({}, 7);
    for (const double share : {0.0, 1 / 6.0, 2 / 6.0, 3 / 6.0, 5 / 6.0, 1.0})
        sketch.dot(onDial(share, dotDistance), 0.75);
    sketch.line({{0, 0}, onDial(0.67, needleLength)});
    sketch.dot({}, 1.5);
}

void drawSliders(Sketch &sketch)
{
    constexpr double knob = 2;
    constexpr std::array rows{QPointF(-3, -5), QPointF(3, 0), QPointF(-1, 5)};
    for (const QPointF &middle : rows) {
        sketch.line({{-7, middle.y()}, {middle.x() - knob, middle.y()}});
        sketch.circle(middle, knob);
        sketch.line({{middle.x() + knob, middle.y()}, {7, middle.y()}});
    }
}

void drawArrowDownInCircle(Sketch &sketch)
{
    sketch.circle({}, 7);
    sketch.line({{0, -4}, {0, 4}});
    sketch.line({{-3, 1}, {0, 4}, {3, 1}});
}

void drawArrowDownInDisc(Sketch &sketch)
{
    sketch.filledCircle(7.5);
    sketch.cutLine({{0, -4}, {0, 4}});
    sketch.cutLine({{-3, 1}, {0, 4}, {3, 1}});
}

void drawClockwiseArrow(Sketch &sketch)
{
    constexpr QPointF tip(6, -3);
    const double radius = std::hypot(tip.x(), tip.y());
    const double tipAngle = std::atan2(-tip.y(), tip.x()) * 180 / std::numbers::pi;
    sketch.arc(radius, tipAngle, 320);
    sketch.line({{tip.x(), tip.y() - 4}, tip, {tip.x() - 4, tip.y()}});
}

void drawHourglass(Sketch &sketch)
{
    sketch.line({{-5, -7}, {5, -7}});
    sketch.line({{-5, 7}, {5, 7}});
    sketch.outline(
        {{-4, -7}, {4, -7}, {4, -4}, {0, 0}, {4, 4}, {4, 7}, {-4, 7}, {-4, 4}, {0, 0}, {-4, -4}});
    sketch.line({{-1, 5}, {1, 5}});
}

void drawPage(Sketch &sketch)
{
    sketch.outline({{-5, -7}, {1, -7}, {5, -3}, {5, 7}, {-5, 7}});
    sketch.line({{1, -7}, {1, -3}, {5, -3}});
    sketch.line({{-2, 1}, {2, 1}});
    sketch.line({{-2, 4}, {2, 4}});
}

void drawStruckKey(Sketch &sketch)
{
    sketch.circle({-3, 3}, 3);
    sketch.line({{-1, 1}, {6, -6}});
    sketch.line({{3, -3}, {5, -1}});
    sketch.line({{5, -5}, {7, -3}});
    sketch.cutLine({{-7, -6}, {6, 7}}, 3);
    sketch.line({{-7, -6}, {6, 7}});
}

void drawWarning(Sketch &sketch)
{
    sketch.filled({{0, -6}, {6, 5}, {-6, 5}});
    sketch.cutLine({{0, -3}, {0, 1}});
    sketch.cutDot({0, 4}, 1);
}

void drawTerminal(Sketch &sketch)
{
    sketch.box({-7, -6}, {7, 6}, 2);
    sketch.line({{-4, -3}, {-1, 0}, {-4, 3}});
    sketch.line({{1, 3}, {4, 3}});
}

void drawProcessor(Sketch &sketch)
{
    sketch.box({-5, -5}, {5, 5}, 1.5);
    sketch.box({-2, -2}, {2, 2}, 0.5);
    for (const double at : {-3.0, 0.0, 3.0}) {
        for (const double side : {-1.0, 1.0}) {
            sketch.line({{at, 5 * side}, {at, 7 * side}});
            sketch.line({{5 * side, at}, {7 * side, at}});
        }
    }
}

void drawSum(Sketch &sketch)
{
    sketch.line({{5, -4}, {5, -6}, {-5, -6}, {1, 0}, {-5, 6}, {5, 6}, {5, 4}});
}

void drawMemory(Sketch &sketch)
{
    sketch.box({-7, -5}, {7, 3}, 1);
    for (const double at : {-4.0, 0.0, 4.0})
        sketch.line({{at, -2}, {at, 0}});
    for (const double at : {-5.0, -2.0, 2.0, 5.0})
        sketch.line({{at, 3}, {at, 6}});
}

void drawNumberSign(Sketch &sketch)
{
    sketch.line({{-2, -6}, {-4, 6}});
    sketch.line({{4, -6}, {2, 6}});
    sketch.line({{-5, -2}, {6, -2}});
    sketch.line({{-6, 2}, {5, 2}});
}

void drawLineChart(Sketch &sketch)
{
    sketch.line({{-7, -6}, {-7, 6}, {7, 6}});
    sketch.line({{-4, 2}, {-1, -2}, {2, 1}, {7, -5}});
}

void drawCheckInDisc(Sketch &sketch)
{
    sketch.filledCircle(7.5);
    sketch.cutLine({{-3, 0}, {-1, 3}, {4, -3}});
}

void drawGroup(Sketch &sketch)
{
    sketch.box({-7, -6}, {-1, 6}, 1);
    sketch.box({2, -6}, {7, -1}, 1);
    sketch.box({2, 2}, {7, 6}, 1);
}

struct Symbol
{
    const char *name;
    void (*draw)(Sketch &sketch);
};

constexpr std::array symbols{
    Symbol{"gauge.with.dots.needle.67percent", drawGauge},
    Symbol{"slider.horizontal.3", drawSliders},
    Symbol{"arrow.down.circle", drawArrowDownInCircle},
    Symbol{"arrow.down.circle.fill", drawArrowDownInDisc},
    Symbol{"arrow.clockwise", drawClockwiseArrow},
    Symbol{"hourglass", drawHourglass},
    Symbol{"doc.text", drawPage},
    Symbol{"key.slash", drawStruckKey},
    Symbol{"exclamationmark.triangle.fill", drawWarning},
    Symbol{"terminal", drawTerminal},
    Symbol{"cpu", drawProcessor},
    Symbol{"sum", drawSum},
    Symbol{"memorychip", drawMemory},
    Symbol{"number", drawNumberSign},
    Symbol{"chart.xyaxis.line", drawLineChart},
    Symbol{"checkmark.circle.fill", drawCheckInDisc},
    Symbol{"rectangle.3.group", drawGroup},
};

} // namespace

QStringList symbolNames()
{
    QStringList names;
    for (const Symbol &symbol : symbols)
        names += QString::fromLatin1(symbol.name);
    return names;
}

void drawSymbol(QPainter &painter, const QString &name, const QRectF &rect, const QColor &color)
{
    const auto symbol = std::ranges::find_if(
        symbols, [&name](const Symbol &each) { return name == QLatin1String(each.name); });
    if (symbol == symbols.end() || rect.isEmpty())
        return;

    const double pixelsPerUnit = painter.deviceTransform().m11();
    Sketch sketch(std::min(rect.width(), rect.height()) * pixelsPerUnit);
    symbol->draw(sketch);

    const double side = sketch.pixels() / pixelsPerUnit;
    QPointF corner = rect.center() - QPointF(side, side) / 2;
    corner.setX(std::round(corner.x() * pixelsPerUnit) / pixelsPerUnit);
    corner.setY(std::round(corner.y() * pixelsPerUnit) / pixelsPerUnit);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(corner + QPointF(side, side) / 2);
    painter.scale(1 / pixelsPerUnit, 1 / pixelsPerUnit);
    painter.fillPath(sketch.region(), color);
    painter.restore();
}

} // namespace tallyglass
