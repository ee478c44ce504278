#include "update/VersionOrder.h"

#include "support/Table.h"

using namespace tallyglass;

namespace {

struct OrderRow
{
    const char *name;
    QByteArray left;
    QByteArray right;
    int order; ///< of left to right: below 0, 0, above 0
};

} // namespace

class VersionOrderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void order_data()
    {
        const QByteArray nines(30, '9');
        test::table<OrderRow>({
            {"same", "1.2.3", "1.2.3", 0},
            {"digits are a number", "1.9", "1.10", -1},
            {"more parts", "1.0", "1", 1},
            {"nothing", "", "1", -1},
            {"leading zeros", "1.01", "1.1", 0},
            {"zeros before a smaller number", "1.09", "1.8", 1},
            {"beyond 64 bits", nines + "8", nines + "9", -1},
            {"suffix", "7.1.3b5", "7.1.3", 1},
            {"number in a suffix", "2.0b10", "2.0b9", 1},
            {"letters by code", "2.0a", "2.0b", -1},
        });
    }
    void order()
    {
        const auto row = test::currentRow<OrderRow>();
        const QString left = QString::fromUtf8(row.left);
        const QString right = QString::fromUtf8(row.right);
        QVERIFY(compareVersions(left, right) == (row.order <=> 0));
        QVERIFY(compareVersions(right, left) == (0 <=> row.order));
    }
};

QTEST_GUILESS_MAIN(VersionOrderTest)
#include "VersionOrderTest.moc"
