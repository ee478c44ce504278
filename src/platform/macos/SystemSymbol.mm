#include "platform/Desktop.h"

#import <AppKit/AppKit.h>
#include <algorithm>

namespace tallyglass {

namespace {

NSColor *nativeColor(const QColor &color)
{
    return [NSColor colorWithSRGBRed:color.redF()
                               green:color.greenF()
                                blue:color.blueF()
                               alpha:color.alphaF()];
}

/// The middle of a picture, as large as the shape of the symbol allows.
NSRect placeOf(NSSize symbol, QSize picture)
{
    const CGFloat scale =
        std::min(picture.width() / symbol.width, picture.height() / symbol.height);
    const CGFloat width = symbol.width * scale;
    const CGFloat height = symbol.height * scale;
    return NSMakeRect((picture.width() - width) / 2, (picture.height() - height) / 2, width,
                      height);
}

} // namespace

QImage systemSymbol(const QString &name, QSize size, const QColor &color)
{
    NSImage *symbol = [NSImage imageWithSystemSymbolName:name.toNSString()
                                accessibilityDescription:nil];
    if (!symbol || size.isEmpty())
        return {};
    // Drawn at its own size a symbol has the strokes that were designed for it.
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:size.height()
                                                        weight:NSFontWeightRegular];
    symbol = [symbol imageWithSymbolConfiguration:configuration];

    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    const CGColorSpaceRef space = CGColorSpaceCreateWithName(kCGColorSpaceSRGB);
    const CGContextRef context =
        CGBitmapContextCreate(image.bits(), static_cast<std::size_t>(size.width()),
                              static_cast<std::size_t>(size.height()), 8,
                              static_cast<std::size_t>(image.bytesPerLine()), space,
                              static_cast<std::uint32_t>(kCGImageAlphaPremultipliedFirst)
                                  | static_cast<std::uint32_t>(kCGBitmapByteOrder32Host));
    CGColorSpaceRelease(space);
    if (!context)
        return {};

    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context
                                                                               flipped:NO];
    [symbol drawInRect:placeOf(symbol.size, size)];
    [nativeColor(color) set];
    NSRectFillUsingOperation(NSMakeRect(0, 0, size.width(), size.height()),
                             NSCompositingOperationSourceIn);
    [NSGraphicsContext restoreGraphicsState];
    CGContextRelease(context);
    return image;
}

} // namespace tallyglass
