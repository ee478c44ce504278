#include "ui/Symbols.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace tallyglass;

namespace {

QImage drawn(const QString &name)
{
    QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawSymbol(painter, name, QRectF(0, 0, 16, 16), Qt::black);
    return image;
}

} // namespace

class SymbolsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everySymbolIsAnother()
    {
        QList<QImage> images;
        for (const QString &name : symbolNames()) {
            const QImage image = drawn(name);
            QVERIFY2(image != drawn({}), qPrintable(name));
            QVERIFY2(!images.contains(image), qPrintable(name));
            images += image;
        }
    }
};

QTEST_MAIN(SymbolsTest)
#include "SymbolsTest.moc"
