#include "ui/Symbols.h"

#include "support/Table.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <vector>

using namespace tallyglass;

namespace {

QImage drawn(const QString &name, int size, double scale)
{
    const int pixels = qRound(size * scale);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawSymbol(painter, name, QRectF(0, 0, size, size), Qt::black);
    return image;
}

/// The pixels of a column that are wholly covered, and those that are touched at all.
struct Column
{
    int covered = 0;
    int touched = 0;
};

Column column(const QImage &image, int x)
{
    Column column;
    for (int y = 0; y < image.height(); ++y) {
        const int alpha = qAlpha(image.pixel(x, y));
        column.covered += alpha == 255;
        column.touched += alpha > 0;
    }
    return column;
}

} // namespace

struct SizeRow
{
    const char *name;
    int size;
    double scale;
};

class SymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySymbolIsAnother()
    {
        std::vector<QImage> images;
        for (const QString &name : symbolNames()) {
            const QImage image = drawn(name, 16, 1);
            QVERIFY2(image != drawn({}, 16, 1), qPrintable(name));
            QVERIFY2(std::ranges::find(images, image) == images.end(), qPrintable(name));
            images.push_back(image);
        }
    }

    void anUnknownNameDrawsNothing()
    {
        const QImage image = drawn(QStringLiteral("gauge"), 16, 1);
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(column(image, x).touched, 0);
    }

    void straightLinesLieOnPixels_data()
    {
        test::table<SizeRow>({
            {"ordinary", 16, 1},
            {"one and a half", 16, 1.5},
            {"twice", 16, 2},
            {"small tray", 22, 1},
            {"odd", 17, 1},
            {"large", 64, 1},
        });
    }
    /// The upright axis of the chart is the first thing from the left: no pixel of it may be grey
    /// but its round ends.
    void straightLinesLieOnPixels()
    {
        const auto row = test::currentRow<SizeRow>();
        const QImage image = drawn(QStringLiteral("chart.xyaxis.line"), row.size, row.scale);
        int x = 0;
        while (column(image, x).touched == 0)
            ++x;
        QVERIFY(column(image, x).covered > image.height() / 2);
    }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"
