#include "services/UsageModel.h"

#include "model/IsoDateTime.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"
#include "support/FakePorts.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "update/AppUpdateChecker.h"

#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// A model on a machine of fakes, with a home folder of its own.
struct Machine
{
    Machine()
    {
        const QByteArray now = formatIsoDateTime(fake.clock.now() - 60s).toUtf8();
        home.write(QStringLiteral(".claude/projects/p/s.jsonl"),
                   R"({"timestamp":")" + now
                       + R"(","message":{"model":"m","usage":{"input_tokens":1000}}})");
        home.write(QStringLiteral(".claude/.credentials.json"), R"({"accessToken":"token"})");
        QFile::setPermissions(home.write(QStringLiteral(".local/bin/claude")),
                              QFile::ReadOwner | QFile::ExeOwner);
    }

    /// The file's modification date decides whether it is read, so it must lie in the fakes'
    /// present.
    void touchLogs() const
    {
        QFile log(home.path(QStringLiteral(".claude/projects/p/s.jsonl")));
        QVERIFY(log.open(QIODevice::ReadWrite));
        log.setFileTime(QDateTime::fromMSecsSinceEpoch(fake.clock.now().time_since_epoch().count()),
                        QFile::FileModificationTime);
    }

    /// Lets a refresh end, and the check of the token that follows it.
    void settle()
    {
        QTRY_VERIFY(!model.isRefreshing());
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    }

    WindowUsageSummary window(UsageWindowKind kind) const
    {
        return model.snapshot().summary(kind, fake.clock.now(), fake.clock.zone());
    }

    test::TemporaryHome home;
    test::FakePorts fake{home.path()};
    ClaudeUsageAPI api{fake.ports.host, fake.clock, fake.http, &fake.keychain};
    AppUpdateChecker updates{fake.clock, fake.http, fake.ports.host};
    UsageModel model{fake.ports, api, updates};
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
        Machine machine;
        machine.touchLogs();
        machine.fake.defaults.values.insert(QStringLiteral("alertsEnabled"), true);
        machine.fake.http.replies = {
            {200, R"({"five_hour":{"utilization":85,"resets_at":1714570200},
                      "seven_day":{"utilization":20}})"}};
        QCoro::waitFor(machine.model.refresh());

        const auto claude =
            machine.window(UsageWindowKind::FiveHours).summary(UsageProvider::Claude);
        QCOMPARE(claude.tokens.totalTokens(), 1'000);
        QCOMPARE(claude.percentText(), QStringLiteral("85%"));
        const auto month = machine.window(UsageWindowKind::Month).summary(UsageProvider::Claude);
        QVERIFY(!month.rateLimit.has_value()); // No limit of the endpoint is a month long.
        QVERIFY(std::holds_alternative<apistatus::Ok>(machine.model.claudeAPIStatus()));

        const StorageLocations locations(machine.fake.ports.host);
        QVERIFY(readSnapshot(locations) == machine.model.snapshot());
        QCOMPARE(machine.model.history().size(), std::size_t{1});
        QCOMPARE(loadHistory(locations).size(), std::size_t{1});
        QCOMPARE(machine.fake.widgets.reloads, 2); // Before the endpoint's limits, and with them.
        QCOMPARE(machine.fake.notifier.posted.size(), std::size_t{1});
        QVERIFY(!machine.model.isRefreshing());
    }

    void countsAsTheSettingSays()
    {
        Machine machine;
        QByteArray record =
            R"({"timestamp":"NOW","message":{"id":"msg_1","usage":{"input_tokens":1000}}})";
        record.replace("NOW", formatIsoDateTime(machine.fake.clock.now() - 60s).toUtf8());
        machine.home.write(QStringLiteral(".claude/projects/p/s.jsonl"), record + '\n' + record);
        machine.touchLogs();
        for (const bool isOnce : {false, true, false}) {
            machine.fake.defaults.values.insert(QStringLiteral("countsAnswersOnce"), isOnce);
            QCoro::waitFor(machine.model.refresh());
            const auto claude =
                machine.window(UsageWindowKind::Week).summary(UsageProvider::Claude);
            QCOMPARE(claude.tokens.totalTokens(), isOnce ? 1'000 : 2'000);
        }
    }

    void startsFromTheLastSnapshot()
    {
        Machine machine;
        machine.touchLogs();
        QCoro::waitFor(machine.model.refresh());
        machine.fake.clock.advance(60s);
        UsageModel next(machine.fake.ports, machine.api, machine.updates);
        QVERIFY(next.snapshot() == machine.model.snapshot());
        QVERIFY(next.cliStatuses()[1].detectedPath.has_value());
    }

    void aSecondRequestReturnsAtOnce()
    {
        Machine machine;
        auto first = machine.model.refresh();
        QVERIFY(machine.model.isRefreshing());
        QVERIFY(machine.model.refresh().isReady());
        QVERIFY(!first.isReady());
        QCoro::waitFor(first);
        QCOMPARE(machine.fake.http.requests.size(), std::size_t{1});
    }

    void refreshesAtStartEveryFiveMinutesAndOnWaking()
    {
        Machine machine;
        machine.model.start();
        QTRY_COMPARE(machine.fake.http.requests.size(), std::size_t{1});
        QTRY_VERIFY(!machine.model.isRefreshing());
        QCOMPARE(machine.fake.clock.sleepers(), std::size_t{1});

        QSignalSpy changed(&machine.model, &UsageModel::changed);
        machine.fake.clock.advance(299s);
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), 0);
        machine.fake.clock.advance(1s);
        QTRY_COMPARE(machine.fake.http.requests.size(), std::size_t{2});
        QTRY_COMPARE(machine.fake.clock.sleepers(), std::size_t{1});

        // Hours asleep are one refresh, not as many as would have fitted in.
        machine.fake.clock.advance(8h);
        QTRY_COMPARE(machine.fake.http.requests.size(), std::size_t{3});
        QTRY_COMPARE(machine.fake.clock.sleepers(), std::size_t{1});
        QCOMPARE(machine.fake.http.requests.size(), std::size_t{3});

        machine.fake.clock.advance(61s); // or the endpoint is not asked again
        Q_EMIT machine.fake.sleepWatch.woke();
        QTRY_COMPARE(machine.fake.http.requests.size(), std::size_t{4});
        machine.settle();
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
        Machine machine;
        const auto expiry = machine.fake.clock.now() + row.expiresIn;
        machine.home.write(QStringLiteral(".claude/.credentials.json"),
                           R"({"accessToken":"token","expiresAt":)"
                               + QByteArray::number(qint64{expiry.time_since_epoch().count()})
                               + '}');
        if (!row.isInstalled)
            QFile::remove(machine.home.path(QStringLiteral(".local/bin/claude")));

        auto &jobs = machine.fake.processes.jobs;
        machine.model.start();
        QTRY_VERIFY(machine.fake.widgets.reloads > 0);
        machine.settle();
        QCOMPARE(jobs.size(), row.runs);
        if (row.runs == 0)
            return;

        const ProcessJob expected{.program = machine.home.path(QStringLiteral(".local/bin/claude")),
                                  .arguments = {QStringLiteral("-p"), QStringLiteral("ping"),
                                                QStringLiteral("--model"), QStringLiteral("haiku")},
                                  .workingFolder = machine.home.path(QStringLiteral("tmp")),
                                  .deadline = 90s};
        QVERIFY(jobs.front() == expected);
        machine.settle();

        // Not again within half an hour, whatever came of it.
        machine.fake.clock.advance(1'799s);
        QVERIFY(machine.model.isRefreshing());
        machine.settle();
        QCOMPARE(jobs.size(), row.runs);
    }
};

QTEST_GUILESS_MAIN(UsageModelTest)
#include "UsageModelTest.moc"
