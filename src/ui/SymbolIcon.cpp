#include "ui/SymbolIcon.h"

#include "platform/Desktop.h"
#include "ui/Symbols.h"

#include <QPainter>

namespace tallyglass {

namespace {

constexpr double ordinarySize = 16;

} // namespace

SymbolIcon::SymbolIcon(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setImplicitSize(ordinarySize, ordinarySize);
    connect(this, &SymbolIcon::changed, this, [this] { update(); });
}

void SymbolIcon::paint(QPainter *painter)
{
    const double scale = painter->device()->devicePixelRatio();
    const QImage native = systemSymbol(m_name, (size() * scale).toSize(), m_color);
    if (native.isNull())
        drawSymbol(*painter, m_name, boundingRect(), m_color);
    else
        painter->drawImage(boundingRect(), native);
}

} // namespace tallyglass
