#include "platform/linux/AutostartEntry.h"

#include "platform/linux/DesktopEntry.h"
#include "support/Table.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <cstring>
#include <memory>

using namespace tallyglass;

namespace {

const QByteArray head = "[Desktop Entry]\nType=Application\nName=Tallyglass\n";
/// Stands in for the program that runs; a program, because entries may leave out its folder.
const QString program = QFileInfo(QStringLiteral("/usr/bin/env")).canonicalFilePath();

void write(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
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
    void init()
    {
        m_config = std::make_unique<QTemporaryDir>();
        m_item = std::make_unique<AutostartEntry>(
            AutostartEntry::Places{.configFolder = m_config->path(),
                                   .program = program,
                                   .searchPath = {QStringLiteral("/usr/bin")}});
    }

    void enabledAndDisabled()
    {
        QVERIFY(!m_item->isEnabled());
        QCOMPARE(m_item->setEnabled(true), std::nullopt);
        QVERIFY(m_item->isEnabled());
        QCOMPARE(m_item->setEnabled(false), std::nullopt);
        QVERIFY(!m_item->isEnabled());
        QVERIFY(!QFile::exists(path()));
        QCOMPARE(m_item->setEnabled(false), std::nullopt);
    }

    void reportsWhatTheSessionWouldDo_data()
    {
        const QByteArray ours = head + "Exec=" + program.toUtf8() + '\n';
        test::table<EntryRow>({
            {"ours", ours, true},
            {"with arguments", head + "Exec=\"" + program.toUtf8() + "\" --quiet\n", true},
            {"without its folder", head + "Exec=env\n", true},
            {"in the way of other systems",
             "\n# x\n[Other]\nExec=no\n" + ours + "[Action]\nExec=no\n", true},
            {"with spaces", head + "Exec = env \nHidden = false\n", true},
            {"switched off", ours + "Hidden=true\n", false},
            {"switched off in GNOME", ours + "X-GNOME-Autostart-enabled=false\n", false},
            {"another program", head + "Exec=/opt/other\n", false},
            {"an unknown name", head + "Exec=no-such-program\n", false},
            {"no command", head, false},
            {"not in its group", "Exec=env\n[Other]\nExec=env\n", false},
            {"empty", "", false},
            {"huge", ours + QByteArray(100'000, '\n'), false},
        });
    }

    void reportsWhatTheSessionWouldDo()
    {
        const auto row = test::currentRow<EntryRow>();
        write(path(), row.content);
        QCOMPARE(m_item->isEnabled(), row.isEnabled);

        QCOMPARE(m_item->setEnabled(false), std::nullopt);
        QCOMPARE(QFile::exists(path()), !row.isEnabled);
        QVERIFY(!m_item->isEnabled());

        QCOMPARE(m_item->setEnabled(true), std::nullopt);
        QVERIFY(m_item->isEnabled());
    }

    void quotesThePath_data()
    {
        test::table<PathRow>({
            {"plain", "/usr/bin/tallyglass", R"(Exec="/usr/bin/tallyglass")"},
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
        const QByteArray text = desktopEntry(QString::fromUtf8(row.program));
        QVERIFY2(text.split('\n').contains(row.line), text);
        write(path(), text);
        QCOMPARE(readDesktopEntry(path()),
                 (DesktopEntry{.program = QString::fromUtf8(row.program)}));
    }

    void failsWithTheSystemsText()
    {
        const QString file = m_config->filePath(QStringLiteral("autostart"));
        write(file, {});
        QCOMPARE(m_item->setEnabled(true), QString::fromLocal8Bit(std::strerror(EEXIST)));
        QVERIFY(!m_item->isEnabled());
        QFile::remove(file);

        QDir().mkpath(path());
        QVERIFY(!m_item->setEnabled(true).value().isEmpty());
        QVERIFY(!m_item->isEnabled());
    }

private:
    QString path() const
    {
        return m_config->filePath(QStringLiteral("autostart/tallyglass.desktop"));
    }

    std::unique_ptr<QTemporaryDir> m_config;
    std::unique_ptr<AutostartEntry> m_item;
};

QTEST_GUILESS_MAIN(AutostartEntryTest)
#include "AutostartEntryTest.moc"
