#pragma once

#include <QPainterPath>
#include <QRectF>
#include <QString>

namespace tallyglass {

/// An outline written in a small part of SVG's path syntax: the commands M, L, C, Q and Z and their
/// numbers, each a word of its own: "M 4.7 15.9 L 9.4 13.3 Z".
struct SVGPathShape
{
    QString pathData;
    double viewBoxSize = 0; ///< side of the square in which the outline is drawn

    /// The outline as large as \a rect allows, in its middle and undistorted. Words that are no
    /// command are skipped, a number that cannot be read is 0, and a command whose numbers are
    /// missing ends the outline.
    QPainterPath path(const QRectF &rect) const;
};

} // namespace tallyglass
