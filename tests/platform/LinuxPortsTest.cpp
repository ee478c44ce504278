#include "platform/linux/LinuxPorts.h"

#include "support/FullDisk.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QProcess>
#include <QRegularExpression>

#include <cerrno>
#include <csignal>
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

struct ThingRow
{
    const char *name;
    const char *command; ///< of a shell that makes it; "%" is the file of the settings
    bool isSaved;
};

struct EntryRow
{
    const char *name;
    QByteArray content;
    bool isEnabled;
};

struct PathRow
{
    const char *name;
    const char *program;
    const char *line;
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
        QProcess running;
        running.start(QCoreApplication::applicationFilePath(), {home.path()});
        const QString noted = QStringLiteral("child");
        QTRY_VERIFY(home.read(noted).endsWith('\n'));
        const pid_t child = home.read(noted).trimmed().toInt();
        QCOMPARE(kill(child, 0), 0);
        running.kill();
        running.waitForFinished();
        QTRY_VERIFY(kill(child, 0) != 0 || statusOf(child).contains(") Z "));
    }

    void settingsAreKept()
    {
        const test::TemporaryHome home;
        const QString odd = QStringLiteral("七=日; \"week\"\\ 100 % \n");
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
        test::table<ThingRow>(
            {{"a folder", "mkdir %", false},
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
        const auto row = test::currentRow<ThingRow>();
        const test::TemporaryHome home;
        const QString command = QStringLiteral("cd \"$0\"; mkdir .config; ")
            + QString::fromLatin1(row.command).replace(u'%', settingsFile);
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
        QCOMPARE(makeSettingsFile(home.path(settingsFile))->value(word).isValid(), row.isSaved);
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
        const QByteArray head = "[Desktop Entry]\nType=Application\nName=Tallyglass\n";
        const QByteArray ours = head + "Exec=" + program.toUtf8() + '\n';
        test::table<EntryRow>({
            {"with arguments", head + "Exec=\"" + program.toUtf8() + "\" --quiet\n", true},
            {"by a link", head + "Exec=/bin/env\n", true}, // to /usr/bin
            {"without its folder", head + "Exec = env\nHidden = false\n", true},
            {"in the way of other systems",
             "\n# x\n[Other]\nExec=no\n" + ours + "[Action]\nExec=no\n", true},
            {"switched off", ours + "Hidden=true\n", false},
            {"switched off in GNOME", ours + "X-GNOME-Autostart-enabled=false\n", false},
            {"another program", head + "Exec=/opt/other\n", false},
            {"no command", head, false},
            {"huge", ours + QByteArray(100'000, '\n'), false},
        });
    }
    void reportsWhatTheSessionWouldDo()
    {
        const auto row = test::currentRow<EntryRow>();
        const test::TemporaryHome home;
        const auto item = loginItem(home, program);
        QVERIFY(!item->isEnabled());
        home.write(entry, row.content);
        QCOMPARE(item->isEnabled(), row.isEnabled);
        QCOMPARE(item->setEnabled(false), std::nullopt);
        QCOMPARE(home.read(entry), row.isEnabled ? QByteArray() : row.content); // gone if ours
        QCOMPARE(item->setEnabled(true), std::nullopt);
        QVERIFY(item->isEnabled());
    }

    void quotesThePath_data()
    {
        test::table<PathRow>({
            {"space and quotes", R"(/opt/a "b" 'c'/t)", R"(Exec="/opt/a \\"b\\" 'c'/t")"},
            {"for shells", R"(/opt/$x`y`\z)", R"(Exec="/opt/\\$x\\`y\\`\\\\z")"},
            {"field code", "/opt/100%u", "Exec=env \"/opt/100%%u\""},
            {"line end", "/opt/a\nHidden=true", R"(Exec="/opt/a\nHidden=true")"},
        });
    }
    void quotesThePath()
    {
        const auto row = test::currentRow<PathRow>();
        const test::TemporaryHome home;
        const auto item = loginItem(home, QString::fromUtf8(row.program));
        QCOMPARE(item->setEnabled(true), std::nullopt);
        QVERIFY2(home.read(entry).split('\n').contains(row.line), home.read(entry));
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
