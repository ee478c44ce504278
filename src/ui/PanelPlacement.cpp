#include "ui/PanelPlacement.h"

#include <algorithm>

namespace tallyglass {

namespace {

/// The upper edge wins where the two cannot both be kept.
int within(int wanted, int lowest, int highest)
{
    return std::max(std::min(wanted, highest), lowest);
}

} // namespace

QPoint panelPlace(QSize panel, const QRect &icon, const QRect &available)
{
    const QRect room = available.adjusted(panelGap, panelGap, -panelGap, -panelGap);
    const int right = room.right() + 1 - panel.width();
    const int bottom = room.bottom() + 1 - panel.height();
    if (icon.isEmpty())
        return {within(right, room.left(), right), room.top()};

    const bool isAbove = icon.center().y() < available.center().y();
    const int x = icon.x() + (icon.width() - panel.width()) / 2;
    const int y = isAbove ? icon.bottom() + 1 + panelGap : icon.top() - panelGap - panel.height();
    return {within(x, room.left(), right), within(y, room.top(), bottom)};
}

} // namespace tallyglass
