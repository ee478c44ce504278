#include "support/Table.h"
#include "ui/Contrast.h"
#include "ui/ProviderColors.h"
#include "ui/ProviderLogoView.h"
#include "ui/RingGauge.h"
#include "ui/SVGPathShape.h"

#include <QPainter>

using namespace tallyglass;

namespace {

struct OutlineRow
{
    const char *name;
    const char *pathData;
    int elements; ///< of the painter's path; a cubic curve has three
    QRectF bounds;
};

struct RingRow
{
    const char *name;
    double percent;
    QList<int> filledHours; ///< where a clock would show them
};

QImage painted(QQuickPaintedItem &item, const QSizeF &size)
{
    item.setSize(size);
    QImage image(size.toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    item.paint(&painter);
    return image;
}

/// The pixel in the middle of the ring's line where a clock shows \a hour.
QColor colorAt(const QImage &ring, double hour)
{
    const double angle = hour / 12 * 2 * M_PI;
    const double radius = ring.width() / 2.0 - 5;
    return ring.pixelColor(static_cast<int>(ring.width() / 2.0 + radius * std::sin(angle)),
                           static_cast<int>(ring.height() / 2.0 - radius * std::cos(angle)));
}

} // namespace

class MetersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsOutlines_data()
    {
        // In a box of 24 shown in 96 by 48 points: twice as large, moved 24 points to the right.
        test::table<OutlineRow>({
            {"lines", "M 0 0 L 24 0 L 24 24 Z", 4, {24, 0, 48, 48}},
            {"curves", "M 0 0 C 0 12 12 24 24 24 Q 24 0 0 0", 7, {24, 0, 48, 48}},
            {"a curve without its end", "M 0 0 L 4 4 C 1 1 2 2 3", 2, {24, 0, 8, 8}},
            {"no number is 0", "M x1 0 L 4 4", 2, {24, 0, 8, 8}},
            {"relative commands are skipped", "M 0 0 l 9 9 z L 4 4", 2, {24, 0, 8, 8}},
        });
    }
    void readsOutlines()
    {
        const auto row = test::currentRow<OutlineRow>();
        const SVGPathShape shape{QString::fromLatin1(row.pathData), 24};
        const QPainterPath path = shape.path({0, 0, 96, 48});
        QCOMPARE(path.elementCount(), row.elements);
        QCOMPARE(path.controlPointRect(), row.bounds);
    }

    void fillsTheRingClockwiseFromTheTop_data()
    {
        test::table<RingRow>({
            {"below nothing", -0.2, {}},
            {"a quarter", 0.25, {1, 2}},
            {"all", 1, {1, 2, 4, 5, 7, 8, 10, 11}},
            {"more than all", 1.7, {1, 2, 4, 5, 7, 8, 10, 11}},
        });
    }
    void fillsTheRingClockwiseFromTheTop()
    {
        const auto row = test::currentRow<RingRow>();
        RingGauge ring;
        ring.setProperty("percent", row.percent);
        ring.setProperty("tint", QColor(Qt::red));
        ring.setProperty("trackColor", QColor(Qt::black));
        ring.setProperty("lineWidth", 10.0);
        const QImage image = painted(ring, {112, 112});
        QList<int> filled;
        for (const int hour : {1, 2, 4, 5, 7, 8, 10, 11}) {
            const QColor color = colorAt(image, hour);
            QVERIFY(color.alpha() > 0); // The track is everywhere.
            if (color == Qt::red)
                filled += hour;
        }
        QCOMPARE(filled, row.filledHours);
    }

    void drawsEachProvidersMarkInItsColor()
    {
        QList<QImage> marks;
        for (const UsageProvider provider : allProviders) {
            ProviderLogoView logo;
            logo.setProperty("provider", QString(rawValue(provider)));
            const QImage mark = painted(logo, {48, 48});
            int filled = 0;
            for (int y = 0; y < mark.height(); ++y) {
                for (int x = 0; x < mark.width(); ++x)
                    filled += mark.pixelColor(x, y) == QColor(providerColor(provider).rgb());
            }
            QVERIFY2(filled > 300, qPrintable(QString::number(filled)));
            QVERIFY(!marks.contains(mark));
            marks += mark;
        }
    }

    void shadesTextUntilItCanBeRead()
    {
        for (const QColor &background : {QColor(0xf3, 0xf3, 0xf5), QColor(0x26, 0x27, 0x2a)}) {
            for (const UsageProvider provider : allProviders) {
                const QColor shade = readableShade(providerColor(provider), background);
                QVERIFY(contrastRatio(shade, background) >= 4.5);
                QVERIFY(std::abs(shade.hslHue() - providerColor(provider).hslHue()) <= 2);
            }
        }
        QCOMPARE(qRound(contrastRatio(Qt::black, Qt::white)), 21);
    }
};

QTEST_MAIN(MetersTest)
#include "MetersTest.moc"
