#include "ui/SymbolIcon.h"

#include "ui/Symbols.h"

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
    drawSymbol(*painter, m_name, boundingRect(), m_color);
}

} // namespace tallyglass
