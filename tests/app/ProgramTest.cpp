#include "model/IsoDateTime.h"
#include "model/UsageJson.h"
#include "services/TakeSnapshot.h"
#include "store/SnapshotFile.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QJsonDocument>
#include <QProcess>
#include <QTcpServer>
#include <QTimeZone>

#include <csignal>

using namespace tallyglass;

namespace {

struct Outcome
{
    int status = -1; ///< -1: it did not end by itself
    QByteArray output;
    QByteArray errors;
};

QProcessEnvironment environmentOf(const test::TemporaryHome &home)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    environment.insert(QStringLiteral("TMPDIR"), home.path(QStringLiteral("tmp")));
    return environment;
}

/// Runs the program as a user does, in a home and a temporary folder of its own.
Outcome run(const QStringList &words, const test::TemporaryHome &home)
{
    QProcess program;
    program.setProcessEnvironment(environmentOf(home));
    QDir(home.path()).mkdir(QStringLiteral("tmp"));
    program.start(QStringLiteral(TG_PROGRAM), words);
    const bool hasEnded = program.waitForFinished() && program.exitStatus() == QProcess::NormalExit;
    return {.status = hasEnded ? program.exitCode() : -1,
            .output = program.readAllStandardOutput(),
            .errors = program.readAllStandardError()};
}

/// The application without windows, which reaches the network through a server of the test alone.
class Application
{
public:
    Application(const test::TemporaryHome &home, const QTcpServer &proxy, const QStringList &words,
                int ignoredSignal = 0)
    {
        QDir(home.path()).mkdir(QStringLiteral("tmp"));
        auto environment = environmentOf(home);
        for (const char *display : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(display));
        environment.insert(QStringLiteral("https_proxy"),
                           QStringLiteral("http://127.0.0.1:%1").arg(proxy.serverPort()));
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
        environment.insert(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
        m_process.setProcessEnvironment(environment);
        if (ignoredSignal != 0)
            m_process.setChildProcessModifier(
                [ignoredSignal] { std::signal(ignoredSignal, SIG_IGN); });
        m_process.start(QStringLiteral(TG_PROGRAM), words);
    }

    void signal(int number) { ::kill(static_cast<pid_t>(m_process.processId()), number); }
    /// The system gives such files to root then. Nothing can be seen where there is no /proc.
    bool isMemoryPrivate() const
    {
        const QFileInfo memory(QStringLiteral("/proc/%1/mem").arg(m_process.processId()));
        return !memory.exists() || memory.ownerId() == 0;
    }
    /// -1: it did not end by itself.
    int endStatus()
    {
        return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit
            ? m_process.exitCode()
            : -1;
    }

private:
    QProcess m_process;
};

QString ownFile(const char *name)
{
    return QLatin1String(ownFolder) + u'/' + QLatin1String(name);
}

const QStringList jsonReport{QStringLiteral("report"), QStringLiteral("--json")};

/// The text with the current time in place of NOW.
QByteArray datedNow(QByteArray text)
{
    const auto now =
        std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    return text.replace("NOW", formatIsoDateTime(now).toUtf8());
}

} // namespace

struct OverflowRow
{
    const char *name;
    QString file;
    QByteArray lines;
};

struct SignalRow
{
    const char *name;
    int number;
    bool isIgnored = false; ///< from the start
};

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void jsonReportIsTheSnapshotFile()
    {
        const test::TemporaryHome home;
        const QString claude = home.write(
            QStringLiteral(".claude/projects/p/s.jsonl"),
            datedNow(R"({"timestamp":"NOW","model":"opus","usage":{"input_tokens":70000}})"));
        home.write(QStringLiteral("Library/Application Support/Tallyglass/budgets.json"),
                   R"({"tokenBudgets":{"claude.week":100000}})");
        const Outcome outcome = run(jsonReport, home);
        QCOMPARE(outcome.status, 0);
        QCOMPARE(outcome.errors, QByteArray());

        const auto snapshot = snapshotFromJson(QJsonDocument::fromJson(outcome.output).object());
        QVERIFY(snapshot);
        const auto week = snapshot->summary(UsageWindowKind::Week, {}, QTimeZone::utc());
        QCOMPARE(week.summary(UsageProvider::Claude).percentText(), QStringLiteral("~70%"));

        // The same moment again, written to its file and not to a pipe.
        const Host host{.homeFolder = home.path()};
        CollectionProgress progress;
        writeSnapshot(
            takeSnapshot(host, snapshot->generatedAt, QTimeZone::systemTimeZone(), progress),
            StorageLocations(host));
        QCOMPARE(outcome.output,
                 home.read(QStringLiteral("Library/Application Support/Tallyglass/"
                                          "usage_snapshot.json")));
    }

    /// Nor does it find anything, and says so.
    void reportWritesNothing()
    {
        const test::TemporaryHome home;
        const Outcome outcome = run({QStringLiteral("report")}, home);
        QCOMPARE(outcome.status, 0);
        QVERIFY(outcome.errors.contains(home.path().toUtf8()));
        QCOMPARE(outcome.errors.count('\n'), 1);
        QCOMPARE(
            QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{QStringLiteral("tmp")});
    }

    void demoShowsAllToolsAndLeavesNothing()
    {
        const test::TemporaryHome home;
        const Outcome outcome = run(jsonReport + QStringList{QStringLiteral("--demo")}, home);
        QCOMPARE(outcome.status, 0);
        const auto snapshot = snapshotFromJson(QJsonDocument::fromJson(outcome.output).object());
        QVERIFY(snapshot);
        const auto window = snapshot->summary(UsageWindowKind::FiveHours, {}, QTimeZone::utc());
        QCOMPARE(window.activeProviders().size(), allProviders.size());
        for (const auto &provider : window.providers) // Codex's logs name no model
            QCOMPARE(provider.models.empty(), provider.provider == UsageProvider::Codex);
        QVERIFY(QDir(home.path(QStringLiteral("tmp"))).isEmpty());

        QProcess program;
        program.setProcessEnvironment(environmentOf(home));
        program.start(QStringLiteral(TG_PROGRAM),
                      jsonReport + QStringList{QStringLiteral("--demo")});
        while (QDir(home.path(QStringLiteral("tmp"))).isEmpty()
               && program.state() != QProcess::NotRunning)
            QCoreApplication::processEvents();
        program.terminate();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.readAllStandardOutput(), QByteArray());
        QVERIFY(QDir(home.path(QStringLiteral("tmp"))).isEmpty());
    }

    void theTableKeepsToColumns()
    {
        qputenv("COLUMNS", "40");
        const Outcome outcome = run({QStringLiteral("report"), QStringLiteral("--demo")}, {});
        qunsetenv("COLUMNS");
        QVERIFY(outcome.output.contains("64%") && outcome.output.contains("83%"));
        QVERIFY(!outcome.output.contains('\x1b')); // No colours in a pipe.
        for (const QString &line : QString::fromUtf8(outcome.output).split(u'\n'))
            QVERIFY2(line.size() <= 40, qPrintable(line));
    }

    void jsonCannotSteerTheTerminal()
    {
        const test::TemporaryHome home;
        const QString model = QStringLiteral("a\u009b1m\u2028") + QString::fromUcs4(U"\U000E0041é");
        home.write(QStringLiteral(".claude/a.jsonl"),
                   datedNow(R"({"timestamp":"NOW","model":")" + model.toUtf8()
                            + R"(","usage":{"input_tokens":1}})"));
        const Outcome outcome = run(jsonReport, home);
        QVERIFY(outcome.output.contains("\"a\\u009b1m\\u2028\\udb40\\udc41é\""));
        const auto snapshot = snapshotFromJson(QJsonDocument::fromJson(outcome.output).object());
        QVERIFY(snapshot);
        const auto day = snapshot->summary(UsageWindowKind::Day, {}, QTimeZone::utc());
        QCOMPARE(day.summary(UsageProvider::Claude).models.front().model, model);
    }

    void theBridgeIsReached()
    {
        const test::TemporaryHome home;
        for (const char *option : {"--install", "--uninstall"}) {
            QCOMPARE(run({QStringLiteral("bridge"), QString::fromLatin1(option)}, home).status, 0);
            QCOMPARE(home.read(QStringLiteral(".claude/settings.json"))
                         .contains(TG_SOURCE "/bridge/tallyglass-statusline-bridge.py"),
                     option == QByteArrayView("--install"));
        }
        QCOMPARE(run({QStringLiteral("bridge"), QStringLiteral("--raport")}, home).status, 2);
        QVERIFY(run({QStringLiteral("bridge")}, home).output.contains("--install"));
    }

    void theApplicationEndsWhenItIsTold_data()
    {
        test::table<SignalRow>({
            {"TERM", SIGTERM},
            {"INT", SIGINT},
            {"HUP", SIGHUP},
            {"HUP under nohup", SIGHUP, true},
        });
    }
    /// Without a display, while it waits for an answer of the endpoint.
    void theApplicationEndsWhenItIsTold()
    {
        const auto row = test::currentRow<SignalRow>();
        const test::TemporaryHome home;
        home.write(QStringLiteral(".claude/.credentials.json"), R"({"accessToken":"token"})");
        QTcpServer endpoint; // takes the question and says nothing
        endpoint.listen(QHostAddress::LocalHost);
        Application application(home, endpoint, {}, row.isIgnored ? row.number : 0);
        QTRY_VERIFY(endpoint.hasPendingConnections());
        QVERIFY(QFile::exists(home.path(ownFile("usage_snapshot.json"))));
        QVERIFY(application.isMemoryPrivate());

        application.signal(row.number);
        if (row.isIgnored) {
            QCOMPARE(run({}, home).status, 0); // A second start finds it, and so ends.
            application.signal(SIGTERM);
        }
        QCOMPARE(application.endStatus(), 0);
    }

    void theDemoAsksNobody()
    {
        const test::TemporaryHome home;
        QTcpServer endpoint;
        endpoint.listen(QHostAddress::LocalHost);
        Application application(home, endpoint, {QStringLiteral("--demo")});
        const QDir temporary(home.path(QStringLiteral("tmp")));
        const QStringList demo{QStringLiteral("tallyglass-demo-*")};
        const auto snapshot = [&] {
            return temporary.filePath(temporary.entryList(demo).value(0) + u'/'
                                      + ownFile("usage_snapshot.json"));
        };
        QTRY_VERIFY(QFile::exists(snapshot()));
        // It has a token there, with which it would ask at once.
        QVERIFY(!QTest::qWaitFor([&] { return endpoint.hasPendingConnections(); }, 500));
        application.signal(SIGTERM);
        QCOMPARE(application.endStatus(), 0);
        QVERIFY(QDir(home.path(QStringLiteral("tmp"))).isEmpty());
        QVERIFY(!QFile::exists(home.path(ownFile(""))));
    }

    void misuseIsOneLineAndStatusTwo()
    {
        const Outcome outcome = run({QStringLiteral("raport")}, {});
        QCOMPARE(outcome.status, 2);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.errors.count('\n'), 1);
        QVERIFY(outcome.errors.startsWith("tallyglass: ") && outcome.errors.contains("raport"));
    }

    void outputThatCannotBeWrittenFails()
    {
        const test::TemporaryHome home;
        for (const char *words : {"report --json --demo >/dev/full", "report --demo >&-",
                                  "--help >&-", "--version >/dev/full"}) {
            if (QByteArrayView(words).endsWith("full")
                && !QFile::exists(QStringLiteral("/dev/full")))
                continue; // some systems have none
            QProcess shell;
            shell.setProcessEnvironment(environmentOf(home));
            shell.start(QStringLiteral("/bin/sh"),
                        {QStringLiteral("-c"),
                         QStringLiteral(TG_PROGRAM " ") + QString::fromLatin1(words)});
            QVERIFY(shell.waitForFinished());
            QCOMPARE(shell.exitCode(), 1);
            const QByteArray errors = shell.readAllStandardError();
            QVERIFY2(errors.startsWith("tallyglass: ") && errors.count('\n') == 1, errors);
        }
    }

    void overflowEndsTheProgram_data()
    {
        const auto claude = QStringLiteral(".claude/a.jsonl");
        const auto copilot = QStringLiteral(".copilot/session-state/a.jsonl");
        const QByteArray half = R"({"timestamp":"NOW","input_tokens":5000000000000000000})";
        test::table<OverflowRow>({
            {"two events", claude, half + "\n" + half},
            {"two aliases", claude, R"({"input_tokens":9223372036854775807,"prompt_tokens":1})"},
            {"two counters", claude, R"({"input_tokens":9223372036854775807,"output_tokens":1})"},
            {"stated totals", claude,
             R"([{"timestamp":"NOW","total_tokens":9223372036854775807},
                 {"timestamp":"NOW","total_tokens":1}])"},
            {"below the smallest", claude,
             R"({"input_tokens":-9223372036854775808,"output_tokens":-1})"},
            {"a session's reasoning", copilot,
             R"({"type":"session.shutdown","data":{"modelMetrics":{"m":{"usage":
                 {"outputTokens":9223372036854775807,"reasoningTokens":1}}}}})"},
        });
    }
    void overflowEndsTheProgram()
    {
        const auto row = test::currentRow<OverflowRow>();
        const test::TemporaryHome home;
        home.write(row.file, datedNow(row.lines).replace("\n                 ", ""));
        const Outcome outcome = run({QStringLiteral("report")}, home);
        QCOMPARE(outcome.status, 70);
        QCOMPARE(outcome.output, QByteArray());
        QCOMPARE(outcome.errors,
                 "tallyglass: a token count exceeds 64 bits in " + home.path(row.file).toUtf8()
                     + '\n');
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "ProgramTest.moc"
