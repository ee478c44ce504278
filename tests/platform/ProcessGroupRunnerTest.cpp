#include "platform/qt/ProcessGroupRunner.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <cerrno>
#include <csignal>
#include <memory>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// Reads the numbers of processes that a script has noted, one in a line.
QList<pid_t> notedProcesses(const test::TemporaryHome &folder)
{
    QList<pid_t> processes;
    const auto lines = folder.read(QStringLiteral("noted")).split('\n');
    for (const QByteArray &line : lines) {
        if (!line.isEmpty())
            processes += line.toInt();
    }
    return processes;
}

/// A process that nobody has waited for yet is gone too; only /proc, where there is one, tells.
bool isGone(pid_t process)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(process));
    if (status.open(QIODevice::ReadOnly)) {
        const QByteArray line = status.readAll();
        if (line.mid(line.lastIndexOf(')') + 2, 1) == "Z")
            return true;
    }
    return kill(process, 0) != 0 && errno == ESRCH;
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
            {"finds what lies in its path", "tool", 30s, true, 0},
            {"waits for no input", "cat", 30s, true, 0},
            {"is not held up by its own flood",
             "head -c 9000000 /dev/zero; cat /dev/zero >&2 & :", 30s, true, 0},
            {"hangs", "echo $$ >>noted; exec sleep 1000", 200ms, false, 1},
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
        const test::TemporaryHome folder;
        QFile::setPermissions(folder.write(QStringLiteral("bin/tool"), "#!/bin/sh\n"),
                              QFile::ReadOwner | QFile::ExeOwner);
        ProcessGroupRunner runner;
        ProcessJob job = shell(row.script, folder);
        job.deadline = row.deadline;
        QCOMPARE(QCoro::waitFor(runner.run(std::move(job))), row.succeeds);

        const QList<pid_t> processes = notedProcesses(folder);
        QCOMPARE(processes.size(), row.processCount);
        QTRY_VERIFY(areGone(processes));
    }

    void whatCannotBeStartedFailsAtOnce()
    {
        const test::TemporaryHome folder;
        ProcessGroupRunner runner;
        for (const char *program : {"/nowhere/tool", "/etc/passwd", ""}) {
            ProcessJob job = shell("", folder);
            job.program = QString::fromLatin1(program);
            QVERIFY(!QCoro::waitFor(runner.run(std::move(job))));
        }
        ProcessJob job = shell("exit 0", folder);
        job.workingFolder = QStringLiteral("/nowhere");
        QVERIFY(!QCoro::waitFor(runner.run(std::move(job))));
    }

    void itsEndKillsWhatRuns()
    {
        const test::TemporaryHome folder;
        auto runner = std::make_unique<ProcessGroupRunner>();
        const QCoro::Task<bool> running = runner->run(
            shell("trap '' TERM; sleep 1000 & echo $! >>noted; echo $$ >>noted; wait", folder));
        const QCoro::Task<bool> starting = runner->run(shell("sleep 1000", folder));
        QTRY_COMPARE(notedProcesses(folder).size(), 2);

        runner.reset();
        QVERIFY(running.isReady());
        QVERIFY(starting.isReady());
        QTRY_VERIFY(areGone(notedProcesses(folder)));
    }

private:
    static ProcessJob shell(const char *script, const test::TemporaryHome &folder)
    {
        return {.program = QStringLiteral("/bin/sh"),
                .arguments = {QStringLiteral("-c"), QString::fromUtf8(script)},
                .workingFolder = folder.path(),
                .searchPath = {folder.path(QStringLiteral("bin")), QStringLiteral("/usr/bin"),
                               QStringLiteral("/bin")},
                .deadline = 30s};
    }
};

QTEST_GUILESS_MAIN(ProcessGroupRunnerTest)
#include "ProcessGroupRunnerTest.moc"
