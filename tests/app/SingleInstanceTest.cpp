#include "app/SingleInstance.h"

#include "platform/Host.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <memory>
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
        qputenv("TMPDIR", QFile::encodeName(m_folder->path()));
    }

    void aSecondStartIsHeard_data()
    {
        QTest::addColumn<QString>("home"); // below the folder
        QTest::newRow("beside the lock") << QStringLiteral("home");
        QTest::newRow("too long a path for a socket") << QString(150, u'h');
    }
    void aSecondStartIsHeard()
    {
        QFETCH(QString, home);
        const QString path = m_folder->filePath(home);
        Start first(path);
        QCOMPARE(first.nextWord(), "first");
        QCOMPARE(Start(path).nextWord(), "heard");
        QCOMPARE(first.nextWord(), "shown");
        // Whatever folders a session offers, and whoever else has made what there.
        qputenv("XDG_RUNTIME_DIR", "/nowhere");
        qputenv("TMPDIR", "/nowhere");
        QCOMPARE(Start(path).nextWord(), "heard");
        QCOMPARE(Start(path + QStringLiteral("2")).nextWord(), "first"); // homes do not meet

        constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup
            | QFile::ReadOther | QFile::WriteOther | QFile::ExeOther;
        QDirIterator made(m_folder->path(), QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
        while (made.hasNext())
            QVERIFY2(!(QFileInfo(made.next()).permissions() & others), qPrintable(made.filePath()));
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
        QLocalSocket client;
        client.connectToServer(ownFile("instance.socket"));
        client.write("SHOW US THE WAY\n");
        QVERIFY(client.waitForDisconnected());
        QCOMPARE(Start(home()).nextWord(), "heard");
        QCOMPARE(first.nextWord(), "shown");
    }

    void withoutAPlaceEveryoneIsFirst()
    {
        QVERIFY(QDir().mkpath(ownFile("instance.lock"))); // a folder in its place
        QVERIFY(SingleInstance(home()).claim());
        QVERIFY(SingleInstance(QStringLiteral("/dev/null")).claim());
    }

private:
    QString home() const { return m_folder->path(); }
    QString ownFile(const char *name) const
    {
        return home() + u'/' + QLatin1String(ownFolder) + u'/' + QLatin1String(name);
    }

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
