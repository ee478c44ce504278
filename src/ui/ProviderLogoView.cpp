#include "ui/ProviderLogoView.h"

#include "ui/ProviderColors.h"
#include "ui/SVGPathShape.h"

#include <QPainter>

namespace tallyglass {

namespace {

constexpr double ordinarySize = 13;
constexpr double markSize = 24; // side of the square in which the marks are drawn

} // namespace

ProviderLogoView::ProviderLogoView(QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setImplicitSize(ordinarySize, ordinarySize);
    setAntialiasing(true);
    connect(this, &ProviderLogoView::changed, this, [this] { update(); });
}

void ProviderLogoView::paint(QPainter *painter)
{
    const auto provider = providerFromRawValue(m_provider);
    if (!provider)
        return;
    const ProviderFacts &facts = factsOf(*provider);
    const SVGPathShape mark{QString::fromLatin1(facts.mark), markSize};
    QPainterPath path = mark.path(boundingRect());
    path.setFillRule(facts.markHasHoles ? Qt::OddEvenFill : Qt::WindingFill);
    painter->fillPath(path, m_tint.isValid() ? m_tint : providerColor(*provider));
}

} // namespace tallyglass
