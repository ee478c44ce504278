#include "collect/LogFiles.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tallyglass;
using namespace Qt::StringLiterals;

namespace {

/// Paths below the home folder, in the order in which they are found.
QStringList found(const test::TemporaryHome &home, Instant cutoff = Instant{})
{
    QStringList paths;
    for (const LogFile &file : findLogFiles({.homeFolder = home.path()}, cutoff))
        paths += QDir(home.path()).relativeFilePath(QString::fromStdString(file.path));
    return paths;
}

QByteArray localPath(const test::TemporaryHome &home, const char *relative)
{
    return home.path(QString::fromUtf8(relative)).toLocal8Bit();
}

} // namespace

struct PathRow
{
    const char *name;
    const char *path;
    bool isRead;
};

struct AgeRow
{
    const char *name;
    time_t second; ///< of the last change
    long nanosecond;
    bool isRead;
};

struct SizeRow
{
    const char *name;
    std::int64_t size;
    bool isRead;
};

class LogFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void path_data()
    {
        test::table<PathRow>({
            {"log", ".claude/a.log", true},
            {"capitals", ".claude/a.JSONL", true},
            {"another extension", ".claude/a.txt", false},
            {"compressed", ".codex/sessions/a.jsonl.zst", false},
            {"no extension", ".claude/jsonl", false},
            {"a name that is all extension", ".claude/.jsonl", false},
            {"hidden file", ".claude/.a.jsonl", true},
            {"hidden folder", ".claude/.b/a.jsonl", true},
            {"deep", ".claude/b/c/d/e/f/g/a.jsonl", true},
            {"folder called like a log", ".claude/b.jsonl/a.jsonl", true},
            {"package", ".claude/Tool.app/a.jsonl", false},
            {"package in capitals", ".claude/Tool.BUNDLE/a.jsonl", false},
            {"below a package", ".claude/Tool.framework/b/a.jsonl", false},
            {"folder that is only called app", ".claude/app/a.jsonl", true},
            {"hidden folder called .app", ".claude/.app/a.jsonl", true},
            {"desktop sessions",
             "Library/Application Support/Claude/local-agent-mode-sessions/a.json", true},
            {"beside a root", ".codex/history.jsonl", false},
            {"in the home", ".claude.json", false},
            {"another file of ours", "Library/Application Support/Tallyglass/budgets.json", false},
        });
    }
    void path()
    {
        const auto row = test::currentRow<PathRow>();
        const test::TemporaryHome home;
        const QString path = QString::fromUtf8(row.path);
        home.write(path);
        QCOMPARE(found(home), row.isRead ? QStringList{path} : QStringList{});
    }

    void order()
    {
        const test::TemporaryHome home;
        const QStringList paths{
            QStringLiteral(".codex/sessions/2026/b.jsonl"),
            QStringLiteral(".codex/sessions/a.jsonl"),
            QStringLiteral(".claude/a.JSON"),
            QStringLiteral("Library/Application Support/Claude/local-agent-mode-sessions/a.jsonl"),
            QStringLiteral(".copilot/session-state/1/events.jsonl"),
            QStringLiteral("Library/Application Support/Tallyglass/statusline_rate_limits.json")};
        for (const QString &path : paths)
            home.write(path, "12345");
        QCOMPARE(found(home), paths);

        const auto files = findLogFiles({.homeFolder = home.path()}, Instant{});
        QCOMPARE(files.front().size, 5);
        QVERIFY(!files.front().isDocument);
        QVERIFY(files[2].isDocument);
        QCOMPARE(files.back().provider, UsageProvider::Claude);
    }

    void movedHomes()
    {
        const test::TemporaryHome home;
        const auto files = [&](const QString &codex, const QString &claude) {
            Host host{.homeFolder = home.path()};
            host.movedHomes = {codex, claude, home.path(u"none"_s)};
            QStringList paths;
            for (const LogFile &file : findLogFiles(host, Instant{}))
                paths += QDir(home.path()).relativeFilePath(QString::fromStdString(file.path));
            return paths.join(u' ');
        };
        for (const QString &path :
             {u".codex/sessions/a.log"_s, u".codex/log/b.log"_s, u".claude/c.log"_s,
              u"moved/sessions/d.log"_s, u"moved/e.log"_s})
            home.write(path);
        const QString usual = u".codex/sessions/a.log .claude/c.log"_s;
        const QString moved = home.path(u"moved"_s);
        QCOMPARE(files({}, {}), usual);
        QCOMPARE(files(moved, {}), usual + u" moved/sessions/d.log"_s);
        QCOMPARE(files(moved, moved), usual + u" moved/sessions/d.log moved/e.log"_s);
        // Above, within and the same as the usual folder.
        QCOMPARE(files({}, home.path()),
                 usual + u" .codex/log/b.log moved/e.log moved/sessions/d.log"_s);
        QCOMPARE(files(home.path(u".codex"_s), home.path(u".claude/"_s)), usual);
    }

    void linksAndPipes()
    {
        const test::TemporaryHome home;
        home.write(QStringLiteral("elsewhere/a.jsonl"));
        home.write(QStringLiteral(".claude/real.jsonl"));
        const QByteArray elsewhere = localPath(home, "elsewhere");
        QCOMPARE(symlink((elsewhere + "/a.jsonl").constData(),
                         localPath(home, ".claude/link.jsonl").constData()),
                 0);
        QCOMPARE(symlink(elsewhere.constData(), localPath(home, ".claude/folder").constData()), 0);
        QCOMPARE(symlink(".", localPath(home, ".claude/round").constData()), 0);
        QCOMPARE(symlink("nowhere", localPath(home, ".claude/dead.jsonl").constData()), 0);
        QCOMPARE(mkfifo(localPath(home, ".claude/pipe.jsonl").constData(), 0600), 0);
        QCOMPARE(found(home), QStringList{QStringLiteral(".claude/real.jsonl")});

        // A root may be a link itself.
        QCOMPARE(mkdir(localPath(home, ".codex").constData(), 0700), 0);
        QCOMPARE(symlink(elsewhere.constData(), localPath(home, ".codex/sessions").constData()), 0);
        QCOMPARE(found(home),
                 (QStringList{QStringLiteral(".codex/sessions/a.jsonl"),
                              QStringLiteral(".claude/real.jsonl")}));
    }

    void age_data()
    {
        const auto cutoff = test::fileDate.time_since_epoch() / std::chrono::seconds(1);
        test::table<AgeRow>({
            {"at the cutoff", cutoff, 0, true},
            {"later", cutoff + 1, 0, true},
            {"less than a millisecond earlier", cutoff - 1, 999'999'999, false},
            {"a second earlier", cutoff - 1, 0, false},
        });
    }
    void age()
    {
        const auto row = test::currentRow<AgeRow>();
        const test::TemporaryHome home;
        const QStringList paths{
            QStringLiteral(".claude/a.jsonl"),
            QStringLiteral("Library/Application Support/Tallyglass/statusline_rate_limits.json")};
        for (const QString &path : paths) {
            const std::array times{timespec{}, timespec{row.second, row.nanosecond}};
            const QByteArray file = home.write(path).toLocal8Bit();
            QCOMPARE(utimensat(AT_FDCWD, file.constData(), times.data(), 0), 0);
        }
        QCOMPARE(found(home, test::fileDate), row.isRead ? paths : QStringList{});
    }

    void size_data()
    {
        test::table<SizeRow>({
            {"largest", 33'554'432, true},
            {"a byte more", 33'554'433, false},
        });
    }
    void size()
    {
        const auto row = test::currentRow<SizeRow>();
        const test::TemporaryHome home;
        QVERIFY(QFile::resize(home.write(QStringLiteral(".claude/a.jsonl")), row.size));
        QCOMPARE(found(home).size(), row.isRead ? 1 : 0);
    }

    void foldersThatCannotBeRead()
    {
        if (geteuid() == 0)
            QSKIP("root can read every folder");
        const test::TemporaryHome home;
        const QString closed = home.write(QStringLiteral(".claude/closed/a.jsonl"));
        home.write(QStringLiteral(".claude/open/a.jsonl"));
        QFile folder(QFileInfo(closed).path());
        QVERIFY(folder.setPermissions({}));
        QCOMPARE(found(home), QStringList{QStringLiteral(".claude/open/a.jsonl")});
        QVERIFY(folder.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
};

QTEST_GUILESS_MAIN(LogFilesTest)
#include "LogFilesTest.moc"
