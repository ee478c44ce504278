#include "ui/ProviderLogoView.h"

#include "ui/ProviderColors.h"
#include "ui/SVGPathShape.h"

#include <QFile>
#include <QPainter>

namespace tallyglass {

namespace {

constexpr double ordinarySize = 13;
constexpr double markSize = 24; // side of the square in which the marks are drawn

QString readMark(UsageProvider provider)
{
    QFile file(QStringLiteral(":/marks/%1.path").arg(rawValue(provider)));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll().trimmed())
                                          : QString();
}

/// The marks of Codex and Copilot have holes, which run in no certain direction.
Qt::FillRule fillRule(UsageProvider provider)
{
    return provider == UsageProvider::Claude ? Qt::WindingFill : Qt::OddEvenFill;
}

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
    const SVGPathShape mark{readMark(*provider), markSize};
    QPainterPath path = mark.path(boundingRect());
    path.setFillRule(fillRule(*provider));
    painter->fillPath(path, m_tint.isValid() ? m_tint : providerColor(*provider));
}

} // namespace tallyglass
