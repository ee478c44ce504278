#include "platform/Ports.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// This test's program as it runs when it is started with a home folder: has a child of its own,
/// whose number it prints, and waits for it.
int runChild(int argc, char *argv[])
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

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class LinuxPortsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsTheFactsOfTheMachine()
    {
        const QByteArray before = qgetenv("PATH");
        qputenv("PATH", ":/usr/bin::/bin:");
        const Host host = makePorts(QStringLiteral("/home/ann")).host;
        qputenv("PATH", before);
        QCOMPARE(host.homeFolder, QStringLiteral("/home/ann"));
        QCOMPARE(host.searchPath,
                 (QStringList{QStringLiteral("/usr/bin"), QStringLiteral("/bin")}));
        QVERIFY(host.shortVersion.contains(u'.'));
    }

    void keepsToTheGivenHome()
    {
        const QTemporaryDir home;
        const Ports ports = makePorts(home.path());
        ports.defaults->setValue(QStringLiteral("alertsEnabled"), true);
        QCOMPARE(ports.loginItem->setEnabled(true), std::nullopt);
        QVERIFY(ports.loginItem->isEnabled());
        QVERIFY(QFileInfo::exists(home.filePath(QStringLiteral(".config/Tallyglass.conf"))));
        QVERIFY(contentOf(home.filePath(QStringLiteral(".config/autostart/tallyglass.desktop")))
                    .contains(QCoreApplication::applicationDirPath().toUtf8() + "/tallyglass\""));
        QVERIFY(!ports.keychain->genericPassword(QStringLiteral("any")));
        QVERIFY(!ports.updater);
    }

    void whatItRunsDiesWithIt()
    {
        const QTemporaryDir home;
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(), {home.path()});
        const QString noted = home.filePath(QStringLiteral("child"));
        QTRY_VERIFY(contentOf(noted).endsWith('\n'));
        const pid_t child = contentOf(noted).trimmed().toInt();
        QCOMPARE(kill(child, 0), 0);
        program.kill();
        program.waitForFinished();
        QTRY_VERIFY(kill(child, 0) != 0
                    || contentOf(QStringLiteral("/proc/%1/stat").arg(child)).contains(") Z "));
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
