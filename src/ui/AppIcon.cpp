#include "ui/AppIcon.h"

#include "ui/Symbols.h"

#include <QPainter>
#include <QPixmap>

#include <array>

namespace tallyglass {

namespace {

const auto symbol = QStringLiteral("gauge.with.dots.needle.67percent");
constexpr int maskSize = 36; // pixels: 18 points

constexpr std::array sizes{16, 22, 24, 32, 44, 48, 64}; // pixels, of trays at every scale

// Stands out on white bars and on black ones by more than 4 : 1, and white on it as well.
constexpr QRgb discColor = qRgb(0x2a, 0x72, 0xc8);

} // namespace

QIcon appIcon()
{
    QIcon icon;
    for (const int size : sizes) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(discColor));
        painter.drawEllipse(pixmap.rect());
        drawSymbol(painter, symbol, pixmap.rect(), Qt::white);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

MenuBarIcon menuBarIcon()
{
    QImage mask(maskSize, maskSize, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    drawSymbol(painter, symbol, mask.rect(), Qt::black);
    painter.end();
    return {.symbol = symbol, .colored = appIcon(), .mask = mask};
}

} // namespace tallyglass
