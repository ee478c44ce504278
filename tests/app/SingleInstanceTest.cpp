#include "app/SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>
#include <vector>

using namespace tallyglass;

namespace {

/// This test's program as it runs when it is started with a home folder: says what it is, and when
/// it is asked to show itself.
int runInstance(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const auto say = [](const char *word) {
        std::puts(word);
        std::fflush(stdout);
    };
    SingleInstance instance(QString::fromLocal8Bit(argv[1]));
    QObject::connect(&instance, &SingleInstance::showRequested, [say] { say("shown"); });
    if (!instance.claim()) {
        say(instance.isHeard() ? "heard" : "unheard");
        return 0;
    }
    say("first");
    return QCoreApplication::exec();
}

class Start
{
public:
    explicit Start(const QString &home)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QCoreApplication::applicationFilePath(), {home});
    }
    Start(const Start &) = delete;
    Start &operator=(const Start &) = delete;
    ~Start() { kill(); }

    QByteArray nextWord()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead()) { }
        return m_process.readLine().trimmed();
    }
    void signal(int number) { ::kill(static_cast<pid_t>(m_process.processId()), number); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

} // namespace

class SingleInstanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>(QStringLiteral("/tmp/tallyglass-test"));
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder->path()));
        qputenv("TMPDIR", QFile::encodeName(m_folder->path()));
    }

    void aSecondStartIsHeard()
    {
        Start first(home());
        QCOMPARE(first.nextWord(), "first");
        QCOMPARE(Start(home()).nextWord(), "heard");
        QCOMPARE(first.nextWord(), "shown");
        QCOMPARE(Start(home()).nextWord(), "heard");
    }

    void homesDoNotMeet()
    {
        Start first(home());
        QCOMPARE(first.nextWord(), "first");
        QCOMPARE(Start(home() + QStringLiteral("2")).nextWord(), "first");
        QCOMPARE(Start(home() + QStringLiteral("/.")).nextWord(), "heard");
    }

    void aCrashLeavesNothingInTheWay()
    {
        for (int i = 0; i < 3; ++i) {
            Start first(home());
            QCOMPARE(first.nextWord(), "first");
            first.kill();
        }
    }

    void oneOfManyIsFirst()
    {
        std::vector<std::unique_ptr<Start>> starts;
        for (int i = 0; i < 10; ++i)
            starts.push_back(std::make_unique<Start>(home()));
        QByteArrayList words;
        for (const auto &start : starts)
            words += start->nextWord();
        QCOMPARE(words.count("first"), 1);
        QCOMPARE(words.count("heard"), 9);
    }

    void aStuckOneIsNotWaitedFor()
    {
        Start first(home());
        QCOMPARE(first.nextWord(), "first");
        first.signal(SIGSTOP);
        QElapsedTimer time;
        time.start();
        SingleInstance second(home());
        QVERIFY(!second.claim());
        QVERIFY(time.elapsed() < 1200);
        QVERIFY(!second.isHeard());
        first.signal(SIGCONT);
        QCOMPARE(first.nextWord(), "shown");
    }

    void nonsenseIsNoWish()
    {
        Start first(home());
        QCOMPARE(first.nextWord(), "first");
        const QStringList sockets =
            QDir(m_folder->path()).entryList({QStringLiteral("*.socket")}, QDir::System);
        QCOMPARE(sockets.size(), 1);
        QLocalSocket client;
        client.connectToServer(m_folder->filePath(sockets.first()));
        client.write("SHOW US THE WAY\n");
        QVERIFY(client.waitForDisconnected());
        QCOMPARE(Start(home()).nextWord(), "heard");
        QCOMPARE(first.nextWord(), "shown");
    }

    void onlyTheUserHasAccess_data()
    {
        QTest::addColumn<QByteArray>("runtimeFolder");
        QTest::newRow("none is given") << QByteArray();
        QTest::newRow("a relative one") << QByteArray("run");
        QTest::newRow("one that others can use") << QByteArray("/tmp");
    }

    void onlyTheUserHasAccess()
    {
        QFETCH(QByteArray, runtimeFolder);
        qputenv("XDG_RUNTIME_DIR", runtimeFolder);
        Start first(home());
        QCOMPARE(first.nextWord(), "first");
        QCOMPARE(Start(home()).nextWord(), "heard");
        const QString folder = m_folder->filePath(QStringLiteral("tallyglass-%1").arg(geteuid()));
        constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
            | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
        QVERIFY(!(QFileInfo(folder).permissions() & others));
        const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::System);
        QCOMPARE(files.size(), 2);
        for (const QFileInfo &file : files)
            QVERIFY2(!(file.permissions() & others), qPrintable(file.filePath()));
    }

    void withoutAPlaceEveryoneIsFirst()
    {
        qputenv("XDG_RUNTIME_DIR", "/nowhere");
        qputenv("TMPDIR", "/nowhere");
        QVERIFY(SingleInstance(home()).claim());
    }

private:
    QString home() const { return m_folder->path(); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

int main(int argc, char *argv[])
{
    if (argc == 2 && argv[1][0] == '/')
        return runInstance(argc, argv);
    QCoreApplication application(argc, argv);
    SingleInstanceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "SingleInstanceTest.moc"
