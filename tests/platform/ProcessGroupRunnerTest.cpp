#include "platform/qt/ProcessGroupRunner.h"

#include "support/Table.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <csignal>
#include <memory>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// Reads the numbers of processes that a script has noted, one in a line.
QList<pid_t> notedProcesses(const QString &path)
{
    QFile file(path);
    QList<pid_t> processes;
    if (file.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (!line.isEmpty())
                processes += line.toInt();
        }
    }
    return processes;
}

/// A process that nobody has waited for yet is gone too.
bool isGone(pid_t process)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(process));
    if (!status.open(QIODevice::ReadOnly))
        return true;
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) == "Z";
}

bool areGone(const QList<pid_t> &processes)
{
    return std::ranges::all_of(processes, isGone);
}

} // namespace

struct RunRow
{
    const char *name;
    const char *script; ///< for sh, in an empty folder; notes the processes that must end
    std::chrono::milliseconds deadline;
    bool succeeds;
    qsizetype processCount;
};

class ProcessGroupRunnerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void run_data()
    {
        test::table<RunRow>({
            {"success", "exit 0", 30s, true, 0},
            {"failure", "exit 3", 30s, false, 0},
            {"killed from outside", "kill -9 $$", 30s, false, 0},
            {"waits for no input", "cat", 30s, true, 0},
            {"is not held up by its own flood",
             "head -c 9000000 /dev/zero; cat /dev/zero >&2 & :", 30s, true, 0},
            {"hangs", "echo $$ >>noted; exec sleep 1000", 200ms, false, 1},
            {"ends well, but late", "trap 'exit 0' TERM; echo $$ >>noted; sleep 1000 & wait", 200ms,
             false, 1},
            {"is deaf to the request to end",
             "trap '' TERM; sleep 1000 & echo $! $$ | tr ' ' '\\n' >>noted; "
             "while :; do sleep 1000; done",
             200ms, false, 2},
            {"leaves children behind",
             "(trap '' TERM HUP; sleep 1000) & echo $! >>noted; sleep 1000 & echo $! >>noted", 30s,
             true, 2},
            {"its child outlives the deadline",
             "(trap '' TERM; sleep 1000 & echo $! >>noted; wait) & echo $! >>noted; sleep 1000",
             200ms, false, 2},
        });
    }

    void run()
    {
        const auto row = test::currentRow<RunRow>();
        const QTemporaryDir folder;
        ProcessGroupRunner runner;
        ProcessJob job = shell(row.script, folder);
        job.deadline = row.deadline;
        QCOMPARE(QCoro::waitFor(runner.run(std::move(job))), row.succeeds);

        const QList<pid_t> processes = notedProcesses(folder.filePath(QStringLiteral("noted")));
        QCOMPARE(processes.size(), row.processCount);
        QTRY_VERIFY(areGone(processes));
    }

    void whatCannotBeStartedFailsAtOnce_data()
    {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("workingFolder");
        QTest::newRow("no such program") << "/nowhere/tool" << "/";
        QTest::newRow("a folder") << "/usr" << "/";
        QTest::newRow("no program at all") << "" << "/";
        QTest::newRow("not executable") << "/etc/passwd" << "/";
        QTest::newRow("no such working folder") << "/bin/true" << "/nowhere";
    }

    void whatCannotBeStartedFailsAtOnce()
    {
        QFETCH(QString, program);
        QFETCH(QString, workingFolder);
        ProcessGroupRunner runner;
        QElapsedTimer time;
        time.start();
        QVERIFY(!QCoro::waitFor(runner.run({.program = program,
                                            .arguments = {},
                                            .workingFolder = workingFolder,
                                            .deadline = 90s})));
        QVERIFY(time.elapsed() < 1000);
    }

    void itsEndKillsWhatRuns()
    {
        const QTemporaryDir folder;
        auto runner = std::make_unique<ProcessGroupRunner>();
        const QCoro::Task<bool> running = runner->run(
            shell("trap '' TERM; sleep 1000 & echo $! >>noted; echo $$ >>noted; wait", folder));
        const QCoro::Task<bool> starting = runner->run(shell("sleep 1000", folder));
        const QString noted = folder.filePath(QStringLiteral("noted"));
        QTRY_COMPARE(notedProcesses(noted).size(), 2);

        runner.reset();
        QVERIFY(running.isReady());
        QVERIFY(starting.isReady());
        QTRY_VERIFY(areGone(notedProcesses(noted)));
    }

    void theChildIsPrepared()
    {
        const QTemporaryDir folder;
        ProcessGroupRunner runner([] { raise(SIGKILL); });
        QVERIFY(!QCoro::waitFor(runner.run(shell("exit 0", folder))));
    }

private:
    static ProcessJob shell(const char *script, const QTemporaryDir &folder)
    {
        return {.program = QStringLiteral("/bin/sh"),
                .arguments = {QStringLiteral("-c"), QString::fromUtf8(script)},
                .workingFolder = folder.path(),
                .deadline = 30s};
    }
};

QTEST_GUILESS_MAIN(ProcessGroupRunnerTest)
#include "ProcessGroupRunnerTest.moc"
