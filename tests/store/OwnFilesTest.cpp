#include "store/BudgetsFile.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"
#include "support/FullDisk.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QTimeZone>

#include <sys/stat.h>
#include <unistd.h>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QStringList none;
const Instant start{1'714'566'600s};
const QTimeZone zone("Asia/Tokyo");
const auto folder = QStringLiteral("Library/Application Support/Tallyglass/");
const auto container = QStringLiteral("Library/Containers/x.y.widget/Data/") + folder;
const auto snapshotName = QStringLiteral("usage_snapshot.json");
const auto historyName = QStringLiteral("usage_history.json");
const auto budgetsName = QStringLiteral("budgets.json");

const UsageSnapshot older = UsageSnapshot::empty(start - 300s, zone);
const UsageSnapshot newer = UsageSnapshot::empty(start, zone);

struct Machine
{
    test::TemporaryHome home;
    StorageLocations locations{
        Host{.homeFolder = home.path(), .bundleIdentifier = QStringLiteral("x.y")}};

    /// Records a moment at which Codex has used so much of its five hours, and less than nothing of
    /// its week.
    std::vector<UsageHistorySample> record(std::chrono::seconds later, double fiveHours = 0.5) const
    {
        UsageSnapshot snapshot = newer;
        for (WindowUsageSummary &window : snapshot.summaries) {
            const bool isWeek = window.window == UsageWindowKind::Week;
            window.providers[0].tokens.inputTokens = 250;
            window.providers[0].rateLimit = {.usedPercent = isWeek ? -0.1 : fiveHours};
        }
        return recordHistory(snapshot, start + later, zone, locations);
    }
};

/// Puts something that is no file of ours where one should be.
using Obstacle = void (*)(const test::TemporaryHome &, const QString &);

constexpr Obstacle aFolder = [](const test::TemporaryHome &home, const QString &path) {
    home.write(path + QStringLiteral("/within"));
};
constexpr Obstacle aPipe = [](const test::TemporaryHome &home, const QString &path) {
    QCOMPARE(mkfifo(QFile::encodeName(home.path(path)).constData(), S_IRWXU), 0);
};
constexpr Obstacle aLink = [](const test::TemporaryHome &home, const QString &path) {
    QVERIFY(
        QFile::link(home.write(QStringLiteral("theirs"), encodeSnapshot(older)), home.path(path)));
};
constexpr Obstacle aDevice = [](const test::TemporaryHome &home, const QString &path) {
    QVERIFY(QFile::link(QStringLiteral("/dev/zero"), home.path(path)));
};
constexpr Obstacle aGiant = [](const test::TemporaryHome &home, const QString &path) {
    QVERIFY(QFile::resize(home.write(path, encodeSnapshot(older)), 100 << 20));
};

} // namespace

class OwnFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void locations()
    {
        const auto paths = [](const char *identifier) {
            const StorageLocations locations({.homeFolder = QStringLiteral("/h/./a/.."),
                                              .bundleIdentifier = QString::fromUtf8(identifier)});
            return locations.writingPaths(QStringLiteral("f")).join(u' ') + QStringLiteral(" | ")
                + locations.readingPaths(QStringLiteral("f")).join(u' ');
        };
        const auto own = QStringLiteral("/h/") + folder + u'f';
        const QString widget = own + QStringLiteral(" /h/") + container + u'f';
        const QString local =
            QString(widget).replace(QLatin1String("x.y"), QLatin1String("dev.local.Tallyglass"));
        QCOMPARE(paths("x.y"), widget + QStringLiteral(" | ") + widget);
        QCOMPARE(paths(""), local + QStringLiteral(" | ") + local);
        QCOMPARE(paths("x.y.widget"), own + QStringLiteral(" | ") + widget);
    }

    void snapshotForTheUserAlone()
    {
        const Machine machine;
        const mode_t before = umask(0);
        writeSnapshot(older, machine.locations);
        writeSnapshot(newer, machine.locations);
        umask(before);
        QVERIFY(readSnapshot(machine.locations) == newer);
        for (const QString &location : {folder, container}) {
            QVERIFY(
                machine.home.read(location + snapshotName).startsWith("{\n    \"generatedAt\""));
            QString path = machine.home.path(location + snapshotName);
            QCOMPARE(int(QFile::permissions(path)), 0x6600); // 0600
            QCOMPARE(QFileInfo(path).dir().count(), 3U); // itself, "." and ".."
            while ((path = QFileInfo(path).path()) != machine.home.path())
                QCOMPARE(int(QFile::permissions(path)), 0x7700); // 0700
        }
    }

    void locationsAreIndependent()
    {
        for (const char *blocked : {"Library/Application Support", "Library/Containers"}) {
            const Machine machine;
            machine.home.write(QString::fromUtf8(blocked), "in the way");
            writeSnapshot(newer, machine.locations);
            QVERIFY(readSnapshot(machine.locations) == newer);
        }
        const Machine machine;
        writeSnapshot(newer, machine.locations);
        machine.home.write(folder + snapshotName, encodeSnapshot(older).chopped(20));
        QVERIFY(readSnapshot(machine.locations) == newer); // the widget's
        machine.home.write(container + snapshotName, "[]");
        QVERIFY(!readSnapshot(machine.locations));
    }

    void fullDiskLeavesTheOldFile()
    {
        const Machine machine;
        writeSnapshot(older, machine.locations);
        for (const rlim_t bytes : {rlim_t{0}, rlim_t{1}, rlim_t{2'000}}) {
            {
                const test::FullDisk disk(bytes);
                writeSnapshot(newer, machine.locations);
            }
            QVERIFY(readSnapshot(machine.locations) == older);
            QCOMPARE(QFileInfo(machine.home.path(folder + snapshotName)).dir().count(), 3U);
        }
        writeSnapshot(newer, machine.locations); // once there is room again
        QVERIFY(readSnapshot(machine.locations) == newer);
    }

    void obstacles()
    {
        for (const Obstacle put : {aFolder, aPipe, aLink, aDevice, aGiant}) {
            const Machine machine;
            writeSnapshot(newer, machine.locations);
            QFile::remove(machine.home.path(folder + snapshotName));
            for (const QString &name : {snapshotName, historyName, budgetsName})
                put(machine.home, folder + name);
            QVERIFY(readSnapshot(machine.locations) == newer); // the widget's
            writeSnapshot(older, machine.locations);
            QVERIFY(readSnapshot(machine.locations) == older);
            machine.record(0s);
            QCOMPARE(loadHistory(machine.locations).size(), 1U);
            QVERIFY(loadBudgets(machine.locations) == defaultBudgets());
            QVERIFY(saveBudgets({{{QStringLiteral("codex.day"), 7}}}, machine.locations));
            QVERIFY(loadBudgets(machine.locations) != defaultBudgets());
            if (put == aLink)
                QCOMPARE(machine.home.read(QStringLiteral("theirs")), encodeSnapshot(older));

            put(machine.home, folder + budgetsName + QStringLiteral(".unfinished"));
            QVERIFY(saveBudgets(defaultBudgets(), machine.locations));
            QVERIFY(loadBudgets(machine.locations) == defaultBudgets());
        }
    }

    void budgets()
    {
        // What is loaded for Claude's week, and whether an edit keeps the file.
        const auto loaded = [](const char *content) {
            const Machine machine;
            machine.home.write(folder + budgetsName, content);
            const UsageBudgets budgets = loadBudgets(machine.locations);
            const auto week = budgets.budget(UsageProvider::Claude, UsageWindowKind::Week);
            if (!saveBudgets(budgets, machine.locations)
                || loadBudgets(machine.locations) != budgets)
                return QStringLiteral("not saved");
            const auto aside = folder + budgetsName + QStringLiteral(".malformed");
            return QString::number(week)
                + QLatin1String(machine.home.read(aside) == content ? " kept" : "");
        };
        QCOMPARE(test::mismatches<const char *>(
                     loaded,
                     {{R"({"tokenBudgets":{"codex.day":7}})", "5000000"},
                      {R"({"tokenBudgets":{"claude.week":-3,"x":1},"y":2})", "-3"},
                      {R"({"tokenBudgets":{"claude.week":9007199254740993}})", "9007199254740993"},
                      {"{", "5000000 kept"},
                      {R"([{"tokenBudgets":{"claude.week":7}}])", "5000000 kept"},
                      {R"({"tokenBudgets":{"claude.week":7,"codex.day":"7"}})", "5000000 kept"},
                      {R"({"tokenBudgets":{"claude.week":7,"codex.day":7.5}})", "5000000 kept"},
                      {R"({"tokenBudgets":{"claude.week":null}})", "5000000 kept"},
                      {R"({"tokenBudgets":[7]})", "5000000 kept"}}),
                 none);
        const Machine machine;
        QVERIFY(saveBudgets(loadBudgets(machine.locations), machine.locations));
        QVERIFY(machine.home.read(folder + budgetsName)
                    .startsWith("{\n    \"tokenBudgets\": {\n        \"claude.day\": 1000000,\n"
                                "        \"claude.fiveHours\": 1250000,\n"));
    }

    void history()
    {
        for (const auto &[later, samples] : {std::pair{599s, 1U}, {600s, 2U}, {-3600s, 1U}}) {
            const Machine machine;
            machine.record(0s);
            const auto history = machine.record(later);
            QCOMPARE(history.size(), samples);
            QCOMPARE(loadHistory(machine.locations), history);
        }
        const Machine machine;
        const auto first = machine.record(0s, 1.3);
        QCOMPARE(first.size(), 1U); // The other two have no activity.
        QCOMPARE(first[0].provider, UsageProvider::Codex);
        QCOMPARE(first[0].fiveHourPercent, 1.0);
        QCOMPARE(first[0].weekPercent, 0.0);
        QCOMPARE(first[0].totalTokens, 250);
        machine.record(600s);
        const auto history = machine.record(30 * 24h + 600s);
        QCOMPARE(history.size(), 2U);
        QVERIFY(history[0].date == start + 600s); // exactly 30 days old
    }

    void damagedHistory()
    {
        const Machine machine;
        machine.record(0s);
        machine.record(600s);
        const QByteArray whole = machine.home.read(folder + historyName);
        const QString path = machine.home.write(folder + historyName, whole.chopped(1));
        QCOMPARE(machine.record(1'200s).size(), 3U); // by the widget's
        const QByteArray longer = machine.home.read(folder + historyName);
        QVERIFY(longer.size() > whole.size());

        // What cannot be read is not replaced. The superuser, who reads everything, becomes
        // another.
        QFile::remove(machine.home.path(container + historyName));
        QVERIFY(QFile::setPermissions(path, {}));
        const bool isSuperuser = geteuid() == 0;
        if (isSuperuser) {
            constexpr uid_t nobody = 65'534;
            for (QString above = path; above != machine.home.path();) {
                above = QFileInfo(above).path();
                QCOMPARE(chown(QFile::encodeName(above).constData(), nobody, nobody), 0);
            }
            QCOMPARE(seteuid(nobody), 0);
        }
        const auto shown = machine.record(1'800s);
        if (isSuperuser)
            QCOMPARE(seteuid(0), 0);
        QCOMPARE(shown.size(), 1U);
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(machine.home.read(folder + historyName), longer);
    }
};

QTEST_GUILESS_MAIN(OwnFilesTest)
#include "OwnFilesTest.moc"
