#include "services/UsageModel.h"

#include "model/IsoDateTime.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"
#include "support/Machine.h"
#include "support/Table.h"

#include <QSignalSpy>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// A home in which Claude Code is at work.
struct WorkingMachine : test::Machine
{
    WorkingMachine()
    {
        writeLog(R"({"timestamp":"NOW","message":{"model":"m","usage":{"input_tokens":1000}}})");
        writeToken(24h);
        writeExecutable(QStringLiteral(".local/bin/claude"));
    }

    /// The file's modification date decides whether it is read, so it must lie in the fakes'
    /// present.
    void writeLog(QByteArray lines) const
    {
        lines.replace("NOW", formatIsoDateTime(fake.clock.now() - 60s).toUtf8());
        QFile log(home.write(QStringLiteral(".claude/projects/p/s.jsonl"), lines));
        if (!log.open(QIODevice::ReadWrite)
            || !log.setFileTime(
                QDateTime::fromMSecsSinceEpoch(fake.clock.now().time_since_epoch().count()),
                QFile::FileModificationTime))
            qFatal("cannot date %s", qUtf8Printable(log.fileName()));
    }

    ProviderUsageSummary claudeIn(UsageWindowKind kind) const
    {
        return model.snapshot()
            .summary(kind, fake.clock.now(), fake.clock.zone())
            .summary(UsageProvider::Claude);
    }

    std::size_t requests() const { return fake.http.requests.size(); }
};

struct RenewalRow
{
    const char *name;
    std::chrono::seconds expiresIn;
    bool isInstalled;
    std::size_t runs;
};

} // namespace

class UsageModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refreshesFromLogsToFiles()
    {
        WorkingMachine machine;
        machine.fake.defaults.values.insert(QStringLiteral("alertsEnabled"), true);
        machine.fake.http.replies = {
            {200, R"({"five_hour":{"utilization":85,"resets_at":1714570200},
                      "seven_day":{"utilization":20}})"}};
        auto first = machine.model.refresh();
        QVERIFY(machine.model.isRefreshing());
        QVERIFY(machine.model.refresh().isReady()); // A second request returns at once.
        QVERIFY(!first.isReady());
        QCoro::waitFor(first);
        QVERIFY(!machine.model.isRefreshing());
        QCOMPARE(machine.requests(), std::size_t{1});

        const auto fiveHours = machine.claudeIn(UsageWindowKind::FiveHours);
        QCOMPARE(fiveHours.tokens.totalTokens(), 1'000);
        QCOMPARE(fiveHours.percentText(), QStringLiteral("85%"));
        QCOMPARE(machine.claudeIn(UsageWindowKind::Week).percentText(), QStringLiteral("20%"));
        QVERIFY(
            !machine.claudeIn(UsageWindowKind::Month).rateLimit.has_value()); // None is that long.
        QVERIFY(std::holds_alternative<apistatus::Ok>(machine.model.claudeAPIStatus()));

        const StorageLocations locations(machine.ports.host);
        QVERIFY(readSnapshot(locations) == machine.model.snapshot());
        QCOMPARE(machine.model.history().size(), std::size_t{1});
        QCOMPARE(loadHistory(locations).size(), std::size_t{1});
        QCOMPARE(machine.fake.widgets.reloads, 2); // Before the endpoint's limits, and with them.
        QCOMPARE(machine.fake.notifier.posted.size(), std::size_t{1});

        // The next start shows what was stored.
        const test::Machine next(machine.home.path());
        QVERIFY(next.model.snapshot() == machine.model.snapshot());
        QVERIFY(next.model.cliStatuses()[1].detectedPath.has_value());
    }

    void countsAsTheSettingSays()
    {
        WorkingMachine machine;
        const QByteArray record = R"({"timestamp":"NOW","message":{"id":"msg_1",)"
                                  R"("usage":{"input_tokens":1000}}})";
        machine.writeLog(record + '\n' + record);
        for (const bool isOnce : {false, true, false}) {
            machine.fake.defaults.values.insert(QStringLiteral("countsAnswersOnce"), isOnce);
            QCoro::waitFor(machine.model.refresh());
            QCOMPARE(machine.claudeIn(UsageWindowKind::Week).tokens.totalTokens(),
                     isOnce ? 1'000 : 2'000);
        }
    }

    void refreshesAtStartEveryFiveMinutesAndAfterWaking()
    {
        WorkingMachine machine;
        auto &clock = machine.fake.clock;
        const auto settle = [&](std::size_t requests) {
            QTRY_COMPARE(machine.requests(), requests);
            QTRY_VERIFY(!machine.model.isRefreshing());
        };
        machine.model.start();
        settle(1);

        QSignalSpy changed(&machine.model, &UsageModel::changed);
        clock.advance(299s);
        QCOMPARE(changed.size(), 0);
        clock.advance(1s);
        settle(2);
        clock.advance(8h); // Hours asleep are one refresh, not as many as would have fitted in.
        settle(3);
        QCOMPARE(clock.timers(), std::size_t{1});

        // A network is up some seconds after the machine; one that is not gets a second chance.
        Q_EMIT machine.fake.sleepWatch.woke();
        clock.advance(61s);
        settle(4);
        clock.advance(60s);
        settle(5);
        clock.advance(60s);
        QVERIFY(!machine.model.isRefreshing());
    }

    void renewsATokenThatExpiresSoon_data()
    {
        test::table<RenewalRow>({
            {"eleven minutes are enough", 660s, true, 0},
            {"ten minutes are not", 600s, true, 1},
            {"expired", -60s, true, 1},
            {"nothing to run", 60s, false, 0},
        });
    }
    void renewsATokenThatExpiresSoon()
    {
        const auto row = test::currentRow<RenewalRow>();
        WorkingMachine machine;
        machine.writeToken(row.expiresIn);
        machine.ports.host.searchPath = {QStringLiteral("."), QStringLiteral("/opt/tools")};
        const QString program = machine.home.path(QStringLiteral(".local/bin/claude"));
        if (!row.isInstalled)
            QFile::remove(program);
        const auto foldersOfRuns = [&] {
            return QDir(machine.home.path()).entryInfoList({QStringLiteral("tallyglass-*")});
        };

        auto &processes = machine.fake.processes;
        processes.isSlow = true;
        machine.model.start();
        QTRY_VERIFY(machine.fake.widgets.reloads > 0);
        QTRY_VERIFY(!machine.model.isRefreshing());
        QCOMPARE(processes.jobs.size(), row.runs);
        QCOMPARE(foldersOfRuns().size(), static_cast<qsizetype>(row.runs));
        if (row.runs == 0)
            return;

        const ProcessJob &job = processes.jobs.front();
        QCOMPARE(job.program, program);
        QCOMPARE(job.arguments.join(u' '), QStringLiteral("-p ping --model haiku"));
        QCOMPARE(job.deadline, 90s);
        QCOMPARE(job.searchPath.mid(0, 2),
                 QStringList({machine.home.path(QStringLiteral(".local/bin")),
                              QStringLiteral("/opt/tools")}));
        // Nobody else can have put anything where the tool runs.
        const QFileInfo folder = foldersOfRuns().constFirst();
        QCOMPARE(folder.filePath(), job.workingFolder);
        QCOMPARE(folder.permissions() & QFile::Permissions(0x0fff),
                 QFile::ReadUser | QFile::WriteUser | QFile::ExeUser);
        QVERIFY(QDir(job.workingFolder).isEmpty());

        processes.held.letGo();
        QVERIFY(foldersOfRuns().isEmpty());
        QVERIFY(machine.model.isRefreshing());
        QTRY_VERIFY(!machine.model.isRefreshing());
        // Not again within half an hour, whatever came of it.
        machine.fake.clock.advance(1'799s);
        QTRY_VERIFY(!machine.model.isRefreshing());
        QCOMPARE(processes.jobs.size(), row.runs);
        machine.fake.clock.advance(300s);
        QTRY_COMPARE(processes.jobs.size(), row.runs + 1);
    }

    void runsNothingWithoutAFolderForIt()
    {
        WorkingMachine machine;
        machine.ports.host.temporaryFolder = QStringLiteral("/nowhere");
        QCoro::waitFor(machine.model.refreshClaudeToken());
        QVERIFY(machine.fake.processes.jobs.empty());
        QVERIFY(!machine.model.isRefreshingToken());
    }

    void whatFailsOnceDoesNotStopTheNext()
    {
        WorkingMachine machine;
        machine.fake.http.fails = true;
        QCoro::waitFor(machine.model.refresh());
        QVERIFY(!machine.model.isRefreshing());
        machine.fake.http.fails = false;
        machine.fake.clock.advance(61s);
        QCoro::waitFor(machine.model.refresh());
        QCOMPARE(machine.requests(), std::size_t{2});
        QCOMPARE(machine.model.history().size(), std::size_t{1});
    }
};

QTEST_GUILESS_MAIN(UsageModelTest)
#include "UsageModelTest.moc"
