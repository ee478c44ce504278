#include "platform/linux/LinuxPorts.h"
#include "support/FullDisk.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <cerrno>
#include <cstring>

using namespace tallyglass;

namespace {

const QByteArray head = "[Desktop Entry]\nType=Application\nName=Tallyglass\n";
/// Stands in for the program that runs; a program, because entries may leave out its folder.
const QString program = QFileInfo(QStringLiteral("/usr/bin/env")).canonicalFilePath();
const QString entry = QStringLiteral("autostart/tallyglass.desktop");

std::unique_ptr<LoginItem> itemIn(const test::TemporaryHome &config,
                                  const QString &started = program)
{
    return makeAutostartEntry({.configFolder = config.path(),
                               .program = started,
                               .searchPath = {QStringLiteral("/usr/bin")}});
}

} // namespace

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

class AutostartEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportsWhatTheSessionWouldDo_data()
    {
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
        const test::TemporaryHome config;
        const auto item = itemIn(config);
        QVERIFY(!item->isEnabled());
        config.write(entry, row.content);
        QCOMPARE(item->isEnabled(), row.isEnabled);

        QCOMPARE(item->setEnabled(false), std::nullopt);
        QCOMPARE(config.read(entry), row.isEnabled ? QByteArray() : row.content); // gone if ours
        QVERIFY(!item->isEnabled());
        QCOMPARE(item->setEnabled(true), std::nullopt);
        QVERIFY(item->isEnabled());
    }

    void quotesThePath_data()
    {
        test::table<PathRow>({
            {"space and quotes", R"(/opt/a "b" 'c'/t)", R"(Exec="/opt/a \\"b\\" 'c'/t")"},
            {"for shells", R"(/opt/$x`y`\z)", R"(Exec="/opt/\\$x\\`y\\`\\\\z")"},
            {"field code", "/opt/100%u", "Exec=\"/opt/100%%u\""},
            {"line end", "/opt/a\nHidden=true", R"(Exec="/opt/a\nHidden=true")"},
            {"Japanese", "/opt/計/t", "Exec=\"/opt/計/t\""},
        });
    }
    void quotesThePath()
    {
        const auto row = test::currentRow<PathRow>();
        const test::TemporaryHome config;
        const auto item = itemIn(config, QString::fromUtf8(row.program));
        QCOMPARE(item->setEnabled(true), std::nullopt);
        const QByteArray text = config.read(entry);
        QVERIFY2(text.split('\n').contains(row.line), text);
        QVERIFY(item->isEnabled());
    }

    void failsWithTheSystemsText()
    {
        const test::TemporaryHome config;
        config.write(QStringLiteral("autostart"));
        const auto item = itemIn(config);
        QCOMPARE(item->setEnabled(true), QString::fromLocal8Bit(std::strerror(EEXIST)));
        QVERIFY(!item->isEnabled());
    }

    void aFullDiskLeavesNoHalfFile()
    {
        const test::TemporaryHome config;
        const auto item = itemIn(config);
        {
            const test::FullDisk disk(20);
            QVERIFY(item->setEnabled(true).has_value());
        }
        QVERIFY(QDir(config.path(QStringLiteral("autostart"))).isEmpty());
    }
};

QTEST_GUILESS_MAIN(AutostartEntryTest)
#include "AutostartEntryTest.moc"
