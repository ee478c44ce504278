#pragma once

#include <QColor>
#include <QRectF>
#include <QString>
#include <QStringList>

class QPainter;

namespace tallyglass {

/// The names of the symbols that can be drawn. Systems with a set of their own know them by the
/// same names.
QStringList symbolNames();

/// Draws a symbol into the largest square in the middle of \a rect, in one colour. Its strokes are
/// whole pixels wide and its straight lines lie on the device's pixels, so it is sharp at any size
/// and scale. An unknown name draws nothing.
void drawSymbol(QPainter &painter, const QString &name, const QRectF &rect, const QColor &color);

} // namespace tallyglass
