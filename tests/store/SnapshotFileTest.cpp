#include "store/SnapshotFile.h"

#include "support/FullDisk.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <QTimeZone>

#include <sys/stat.h>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const auto ownFile = QStringLiteral("Library/Application Support/Tallyglass/usage_snapshot.json");
const auto widgetFile =
    QStringLiteral("Library/Containers/x.y.widget/Data/Library/Application Support/Tallyglass/"
                   "usage_snapshot.json");

const UsageSnapshot older = UsageSnapshot::empty(Instant{1'700'000'000s}, QTimeZone::utc());
const UsageSnapshot newer = UsageSnapshot::empty(Instant{1'700'000'300s}, QTimeZone::utc());

StorageLocations locationsIn(const test::TemporaryHome &home)
{
    return StorageLocations({.homeFolder = home.path(), .bundleIdentifier = QStringLiteral("x.y")});
}

} // namespace

struct BlockRow
{
    const char *name;
    const char *blocked; ///< a file where a folder should be
    QString readable;
};

class SnapshotFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothPlacesForTheUserAlone()
    {
        const test::TemporaryHome home;
        const mode_t before = umask(0);
        writeSnapshot(older, locationsIn(home));
        writeSnapshot(newer, locationsIn(home));
        umask(before);
        for (const QString &file : {ownFile, widgetFile}) {
            QCOMPARE(home.read(file), encodeSnapshot(newer));
            QString path = home.path(file);
            QCOMPARE(int(QFile::permissions(path)), 0x6600); // 0600
            const QDir folder = QFileInfo(path).dir();
            QCOMPARE(folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                     QStringList{QStringLiteral("usage_snapshot.json")});
            while ((path = QFileInfo(path).path()) != home.path())
                QCOMPARE(int(QFile::permissions(path)), 0x7700); // 0700
        }
        QVERIFY(readSnapshot(locationsIn(home)) == newer);
    }

    void placesAreIndependent_data()
    {
        test::table<BlockRow>({
            {"own folder blocked", "Library/Application Support", widgetFile},
            {"widget's container blocked", "Library/Containers", ownFile},
        });
    }
    void placesAreIndependent()
    {
        const auto row = test::currentRow<BlockRow>();
        const test::TemporaryHome home;
        home.write(QString::fromUtf8(row.blocked), "in the way");
        writeSnapshot(newer, locationsIn(home));
        QCOMPARE(home.read(row.readable), encodeSnapshot(newer));
        QVERIFY(readSnapshot(locationsIn(home)) == newer);
        QCOMPARE(home.read(QString::fromUtf8(row.blocked)), QByteArray("in the way"));
    }

    void fullDiskLeavesTheOldFile()
    {
        const test::TemporaryHome home;
        writeSnapshot(older, locationsIn(home));
        for (const rlim_t bytes : {rlim_t{0}, rlim_t{1}, rlim_t{2'000}}) {
            {
                const test::FullDisk disk(bytes);
                writeSnapshot(newer, locationsIn(home));
            }
            QCOMPARE(home.read(ownFile), encodeSnapshot(older));
            QCOMPARE(QFileInfo(home.path(ownFile)).dir().count(), 3U); // itself, "." and ".."
        }
        writeSnapshot(newer, locationsIn(home)); // once there is room again
        QCOMPARE(home.read(ownFile), encodeSnapshot(newer));
    }

    void secondPlaceServesWhenTheFirstIsBroken()
    {
        const test::TemporaryHome home;
        writeSnapshot(newer, locationsIn(home));
        home.write(ownFile, encodeSnapshot(older).chopped(20));
        QVERIFY(readSnapshot(locationsIn(home)) == newer);
        home.write(widgetFile, "[]");
        QVERIFY(!readSnapshot(locationsIn(home)));
    }
};

QTEST_GUILESS_MAIN(SnapshotFileTest)
#include "SnapshotFileTest.moc"
