#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace tallyglass {

inline constexpr int panelGap = 4; ///< pixels to the icon and to the edges of the screen

/// Where the top left corner of a panel belongs that opens at an icon: below the icon when that is
/// in the upper half of the screen, else above it, in its middle, and wholly within \a available,
/// which is the screen without its bars. Without an icon: in the upper right corner.
QPoint panelPlace(QSize panel, const QRect &icon, const QRect &available);

} // namespace tallyglass
