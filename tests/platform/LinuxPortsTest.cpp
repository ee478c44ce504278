#include "platform/Ports.h"
#include "support/TemporaryHome.h"

#include <QProcess>

#include <csignal>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// This test's program as it runs when it is started with a home folder: has a child of its own,
/// whose number it prints, and waits for it.
int runChild(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString home = QString::fromLocal8Bit(argv[1]);
    const Ports ports = makePorts(home);
    ProcessJob job{
        .program = QStringLiteral("/bin/sh"),
        .arguments = {QStringLiteral("-c"), QStringLiteral("echo $$ >child; exec sleep 1000")},
        .workingFolder = home,
        .deadline = 90s};
    return QCoro::waitFor(ports.processes->run(std::move(job))) ? 0 : 1;
}

QByteArray statusOf(pid_t process)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(process));
    return status.open(QIODevice::ReadOnly) ? status.readAll() : QByteArray();
}

} // namespace

class LinuxPortsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheFactsOfTheMachine()
    {
        const QByteArray before = qgetenv("PATH");
        qputenv("PATH", ":/usr/bin::/bin:"); // no place in it is the working folder
        const Host host = makePorts(QStringLiteral("/home/ann")).host;
        qputenv("PATH", before);
        QCOMPARE(host.searchPath,
                 (QStringList{QStringLiteral("/usr/bin"), QStringLiteral("/bin")}));
        QVERIFY(host.shortVersion.contains(u'.'));
    }

    void keepsToTheGivenHome()
    {
        const test::TemporaryHome home;
        const Ports ports = makePorts(home.path());
        ports.defaults->setValue(QStringLiteral("alertsEnabled"), true);
        QCOMPARE(ports.loginItem->setEnabled(true), std::nullopt);
        QVERIFY(ports.loginItem->isEnabled());
        QVERIFY(!home.read(QStringLiteral(".config/Tallyglass.conf")).isEmpty());
        QVERIFY(home.read(QStringLiteral(".config/autostart/tallyglass.desktop"))
                    .contains(QCoreApplication::applicationDirPath().toUtf8() + "/tallyglass\""));

        const test::TemporaryHome config; // in its place, but only by its full path
        for (const QByteArray &chosen : {config.path().toUtf8() + '/', QByteArray("config")}) {
            qputenv("XDG_CONFIG_HOME", chosen);
            QCOMPARE(makePorts(home.path()).loginItem->isEnabled(), chosen == "config");
        }
    }

    void whatItRunsDiesWithIt()
    {
        const test::TemporaryHome home;
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {home.path()});
        const QString noted = QStringLiteral("child");
        QTRY_VERIFY(home.read(noted).endsWith('\n'));
        const pid_t child = home.read(noted).trimmed().toInt();
        QCOMPARE(kill(child, 0), 0);
        program.kill();
        program.waitForFinished();
        QTRY_VERIFY(kill(child, 0) != 0 || statusOf(child).contains(") Z "));
    }

    void init() { qunsetenv("XDG_CONFIG_HOME"); }
};

int main(int argc, char *argv[])
{
    if (argc == 2 && argv[1][0] == '/')
        return runChild(argc, argv);
    QCoreApplication application(argc, argv);
    LinuxPortsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LinuxPortsTest.moc"
