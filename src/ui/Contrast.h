#pragma once

#include <QColor>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// The contrast of two opaque colours, 1 to 21, as the accessibility guidelines of the web define
/// it.
double contrastRatio(const QColor &a, const QColor &b);

/// A shade of \a color that can be read as text on \a background, in which case it is the colour
/// itself. Its hue stays, so that a name still has the colour of its ring.
QColor readableShade(const QColor &color, const QColor &background);

/// readableShade() for QML.
class Contrast : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE QColor readable(const QColor &color, const QColor &background) const
    {
        return readableShade(color, background);
    }
};

} // namespace tallyglass
