#include "ui/SVGPathShape.h"

#include <QStringList>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace tallyglass {

namespace {

/// How many points follow the command; -1 for a word that is none.
qsizetype pointCount(QStringView word)
{
    if (word.size() != 1)
        return -1;
    switch (word[0].unicode()) {
    case 'M':
    case 'L':
        return 1;
    case 'Q':
        return 2;
    case 'C':
        return 3;
    case 'Z':
        return 0;
    default:
        return -1;
    }
}

double number(const QString &word)
{
    const double value = word.toDouble();
    return std::isfinite(value) ? value : 0;
}

QPainterPath outline(const QStringList &words)
{
    QPainterPath path;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const qsizetype count = pointCount(words[i]);
        if (count < 0)
            continue;
        if (words.size() - i - 1 < 2 * count)
            break;
        const QChar command = words[i][0];
        const auto point = [&](qsizetype index) {
            return QPointF(number(words[i + 2 * index + 1]), number(words[i + 2 * index + 2]));
        };
        if (command == u'M')
            path.moveTo(point(0));
        else if (command == u'L')
            path.lineTo(point(0));
        else if (command == u'Q')
            path.quadTo(point(0), point(1));
        else if (command == u'C')
            path.cubicTo(point(0), point(1), point(2));
        else
            path.closeSubpath();
        i += 2 * count;
    }
    return path;
}

} // namespace

QPainterPath SVGPathShape::path(const QRectF &rect) const
{
    const double scale = std::min(rect.width(), rect.height()) / viewBoxSize;
    QTransform fit;
    fit.translate(rect.center().x() - viewBoxSize * scale * 0.5,
                  rect.center().y() - viewBoxSize * scale * 0.5);
    fit.scale(scale, scale);
    return fit.map(outline(pathData.split(u' ', Qt::SkipEmptyParts)));
}

} // namespace tallyglass
