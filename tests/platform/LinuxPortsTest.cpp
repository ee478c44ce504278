#include "platform/linux/LinuxPorts.h"

#include "support/FullDisk.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QProcess>
#include <QRegularExpression>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const auto settingsFile = QStringLiteral(".config/Tallyglass.conf");
const auto threshold = QStringLiteral("alertThreshold");
const auto word = QStringLiteral("selectedWindow");
const auto entry = QStringLiteral(".config/autostart/tallyglass.desktop");
/// Stands in for the program that runs; a program, because entries may leave out its folder.
const QString program = QFileInfo(QStringLiteral("/usr/bin/env")).canonicalFilePath();

std::unique_ptr<LoginItem> loginItem(const test::TemporaryHome &home, const QString &started)
{
    return makeAutostartEntry({.configFolder = home.path(QStringLiteral(".config")),
                               .program = started,
                               .searchPath = {QStringLiteral("/usr/bin")}});
}

/// This test's program as it runs when it is started with the name of a pipe: has a child of its
/// own, which holds the pipe, and waits for it.
int runChild(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ProcessJob job{.program = QStringLiteral("/bin/sh"),
                   .arguments = {QStringLiteral("-c"),
                                 QStringLiteral("exec >$0; echo; exec sleep 99"),
                                 QString::fromLocal8Bit(argv[1])},
                   .workingFolder = QStringLiteral("/"),
                   .deadline = 90s};
    return QCoro::waitFor(makePorts({}).processes->run(std::move(job))) ? 0 : 1;
}

} // namespace

struct Row
{
    const char *name;
    QByteArray content; ///< of an entry; or a command, in which "%" is the file of the settings
    bool holds;
};

class LinuxPortsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { qunsetenv("XDG_CONFIG_HOME"); }

    void keepsToTheGivenHome()
    {
        const QByteArray before = qgetenv("PATH");
        qputenv("PATH", ":/usr/bin::/bin:"); // no place in it is the working folder
        const test::TemporaryHome home;
        const Ports ports = makePorts(home.path());
        qputenv("PATH", before);
        QCOMPARE(ports.host.searchPath,
                 (QStringList{QStringLiteral("/usr/bin"), QStringLiteral("/bin")}));
        QVERIFY(ports.host.shortVersion.contains(u'.'));

        ports.defaults->setValue(QStringLiteral("alertsEnabled"), true);
        QCOMPARE(home.read(settingsFile), QByteArray("[General]\nalertsEnabled=true\n"));
        QCOMPARE(ports.loginItem->setEnabled(true), std::nullopt);
        QVERIFY(home.read(entry).contains(QCoreApplication::applicationDirPath().toUtf8()
                                          + "/tallyglass\""));
        const test::TemporaryHome config; // in its place, but only by its full path
        for (const QByteArray &chosen : {config.path().toUtf8() + '/', QByteArray("config")}) {
            qputenv("XDG_CONFIG_HOME", chosen);
            QCOMPARE(makePorts(home.path()).loginItem->isEnabled(), chosen == "config");
        }
    }

    void whatItRunsDiesWithIt()
    {
        const test::TemporaryHome home;
        const QString pipe = home.path(QStringLiteral("pipe"));
        QCOMPARE(mkfifo(pipe.toUtf8().constData(), S_IRWXU), 0);
        QProcess running;
        running.start(QCoreApplication::applicationFilePath(), {pipe});
        QProcess reader; // until nobody holds the pipe
        reader.start(QStringLiteral("cat"), {pipe});
        QVERIFY(reader.waitForReadyRead());
        running.kill();
        running.waitForFinished();
        QVERIFY(reader.waitForFinished());
    }

    void settingsAreKept()
    {
        const test::TemporaryHome home;
        const auto odd = QStringLiteral("七=日; \"week\"\\ 100 % \n");
        const auto before = makeSettingsFile(home.path(settingsFile));
        before->setValue(threshold, 0.8);
        before->setValue(word, odd);
        QCOMPARE(int(QFile::permissions(home.path(settingsFile))), 0x6600); // 0600
        QVERIFY(home.read(settingsFile).startsWith("[General]\nalertThreshold=0.8\n"));
        const auto after = makeSettingsFile(home.path(settingsFile));
        QCOMPARE(after->value(threshold).toDouble(), 0.8);
        QCOMPARE(after->value(word).toString(), odd);
        QVERIFY(!after->value(QStringLiteral("alertsEnabled")).isValid());

        // What was written by hand meanwhile is read, and stays.
        home.write(settingsFile, "[General]\r\n; a=note\r\nnonsense\n=\xff\n b = c \nx=y");
        before->setValue(threshold, 0.5);
        QCOMPARE(home.read(settingsFile), QByteArray("[General]\nalertThreshold=0.5\nb=c\nx=y\n"));
    }

    void whateverHasTheNamesOfTheSettingsIsSteppedAround_data()
    {
        test::table<Row>({{"a folder", "mkdir %", false},
                          {"a pipe", "mkfifo %", false},
                          {"a link to a pipe", "mkfifo pipe; ln -s ../pipe %", false},
                          {"a huge file", "truncate -s 100M %", false},
                          {"a file for a folder", "rmdir .config; echo >.config", false},
                          {"a link to a file", "echo >real; ln -s ../real %", true},
                          {"a pipe for a lock", "mkfifo %.lock", true},
                          {"a link for a start", "echo >real; ln -s ../real %.unfinished", true}});
    }
    void whateverHasTheNamesOfTheSettingsIsSteppedAround()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        const auto row = test::currentRow<Row>();
        const test::TemporaryHome home;
        const QString command = QStringLiteral("cd \"$0\"; mkdir .config; ")
            + QString::fromUtf8(row.content).replace(u'%', settingsFile);
        QCOMPARE(QProcess::execute(QStringLiteral("/bin/sh"),
                                   {QStringLiteral("-c"), command, home.path()}),
                 0);
        const auto kind = [path = home.path(settingsFile).toUtf8()] {
            struct stat status{};
            return lstat(path.constData(), &status) == 0 ? status.st_mode & S_IFMT : 0;
        };
        const auto before = kind();

        const auto settings = makeSettingsFile(home.path(settingsFile));
        settings->setValue(word, QStringLiteral("day"));
        QCOMPARE(settings->value(word).toString(), QStringLiteral("day")); // at least for now
        QVERIFY(before == 0 || kind() == before);
        QCOMPARE(makeSettingsFile(home.path(settingsFile))->value(word).isValid(), row.holds);
    }

    void aFullDiskLeavesTheOldFiles()
    {
        const test::TemporaryHome home;
        const auto settings = makeSettingsFile(home.path(settingsFile));
        settings->setValue(threshold, 0.5);
        const QByteArray before = home.read(settingsFile);
        const auto item = loginItem(home, program);
        {
            const test::FullDisk disk(40);
            settings->setValue(word, QString(100, u'x'));
            QCOMPARE(item->setEnabled(true), QString::fromLocal8Bit(std::strerror(EFBIG)));
        }
        QCOMPARE(home.read(settingsFile), before);
        QVERIFY(QDir(home.path(QStringLiteral(".config/autostart"))).isEmpty());
        settings->setValue(QStringLiteral("b"), 2);
        QVERIFY2(home.read(settingsFile).contains("xxx"), "the next change writes everything");
    }

    void reportsWhatTheSessionWouldDo_data()
    {
        const QByteArray head = "[Desktop Entry]\nType=Application\n";
        const QByteArray ours = head + "Exec=" + program.toUtf8() + '\n';
        test::table<Row>({
            {"with arguments", head + "Exec=\"" + program.toUtf8() + "\" --quiet\n", true},
            {"by a link", head + "Exec=/bin/env\n", true}, // to /usr/bin
            {"among others", "\n# x\n[Other]\nExec=no\n" + head + "Exec = env\n[Z]\nExec=no", true},
            {"switched off", ours + "Hidden=true\n", false},
            {"switched off in GNOME", ours + "X-GNOME-Autostart-enabled=false\n", false},
            {"another program", head + "Exec=/opt/other\n", false},
            {"huge", ours + QByteArray(100'000, '\n'), false},
        });
    }
    void reportsWhatTheSessionWouldDo()
    {
        const auto row = test::currentRow<Row>();
        const test::TemporaryHome home;
        const auto item = loginItem(home, program);
        home.write(entry, row.content);
        QCOMPARE(item->isEnabled(), row.holds);
        QCOMPARE(item->setEnabled(false), std::nullopt);
        QCOMPARE(home.read(entry), row.holds ? QByteArray() : row.content); // gone if ours
        QCOMPARE(item->setEnabled(true), std::nullopt);
        QVERIFY(item->isEnabled());
    }

    void quotesThePath()
    {
        const test::TemporaryHome home;
        const QString odd = QString::fromUtf8("/opt/a \"b\" 'c' $x`y`\\z 100%u 計\nHidden=true");
        const auto item = loginItem(home, odd);
        QCOMPARE(item->setEnabled(true), std::nullopt);
        const QByteArray line = R"(
Exec=env "/opt/a \\"b\\" 'c' \\$x\\`y\\`\\\\z 100%%u 計\nHidden=true")";
        QVERIFY2(home.read(entry).contains(line), home.read(entry));
        QVERIFY(item->isEnabled());
    }
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
