#include "store/StorageLocations.h"

#include "support/Table.h"

using namespace tallyglass;

struct LocationRow
{
    const char *name;
    const char *home;
    const char *bundleIdentifier;
    QStringList writing;
    QStringList reading;
};

class StorageLocationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paths_data()
    {
        const auto own = QStringLiteral("/h/Library/Application Support/Tallyglass/f.json");
        const auto container = [](const char *identifier) {
            return QStringLiteral("/h/Library/Containers/%1/Data/Library/Application Support/"
                                  "Tallyglass/f.json")
                .arg(QString::fromUtf8(identifier));
        };
        const QStringList widget{own, container("x.y.widget")};
        const QStringList local{own, container("dev.local.Tallyglass.widget")};
        test::table<LocationRow>({
            {"the program", "/h", "x.y", widget, widget},
            {"without a bundle", "/h", "", local, local},
            {"the widget writes in its sandbox only", "/h", "x.y.widget", {own}, widget},
            {"paths are standardised", "/h/./a/..", "x.y", widget, widget},
        });
    }
    void paths()
    {
        const auto row = test::currentRow<LocationRow>();
        const StorageLocations locations(
            {.homeFolder = QString::fromUtf8(row.home),
             .bundleIdentifier = QString::fromUtf8(row.bundleIdentifier)});
        QCOMPARE(locations.writingPaths(QStringLiteral("f.json")), row.writing);
        QCOMPARE(locations.readingPaths(QStringLiteral("f.json")), row.reading);
    }
};

QTEST_GUILESS_MAIN(StorageLocationsTest)
#include "StorageLocationsTest.moc"
