#include "services/CLIDetection.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"

using namespace tallyglass;

namespace {

struct PlaceRow
{
    const char *name;
    const char *executables; ///< below the home folder, separated by blanks
    const char *plainFiles; ///< that cannot be executed
    const char *found; ///< below the home folder, null when none
};

QStringList pathsIn(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

struct BridgeRow
{
    const char *name;
    const char *settings;
    bool isConfigured;
};

} // namespace

class CLIDetectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheTool_data()
    {
        test::table<PlaceRow>({
            {"nowhere", "", "", nullptr},
            {"existence alone is not enough", ".volta/bin/claude", ".local/bin/claude",
             ".volta/bin/claude"},
            {"a candidate comes before PATH", "bin/claude .bun/bin/claude", "", ".bun/bin/claude"},
            {"PATH comes before version managers", "bin/claude .nvm/versions/node/v22/bin/claude",
             "", "bin/claude"},
            {"nvm", ".nvm/versions/node/v22/bin/claude", "", ".nvm/versions/node/v22/bin/claude"},
            {"fnm keeps them deeper", ".fnm/node-versions/v22/installation/bin/claude",
             ".fnm/node-versions/v22/bin/claude", ".fnm/node-versions/v22/installation/bin/claude"},
            {"a relative folder of PATH is not searched", "here/claude", "", nullptr},
            {"a folder of that name is none", ".local/bin/claude/x", "", nullptr},
        });
    }
    void findsTheTool()
    {
        const auto row = test::currentRow<PlaceRow>();
        const test::TemporaryHome home;
        QDir(home.path()).mkdir(QStringLiteral("here"));
        for (const QString &path : pathsIn(row.executables))
            QFile::setPermissions(home.write(path), QFile::ReadOwner | QFile::ExeOwner);
        for (const QString &path : pathsIn(row.plainFiles))
            home.write(path);

        QDir::setCurrent(home.path(QStringLiteral("here")));
        const Host host{.homeFolder = home.path(),
                        .searchPath = {QStringLiteral("."), home.path(QStringLiteral("bin"))}};
        const auto statuses = detectAll(host);
        QCOMPARE(statuses.size(), allProviders.size());
        const CLIInstallStatus &claude = statuses[1];
        QCOMPARE(claude.executableName, QStringLiteral("claude"));
        QCOMPARE(claude.dataPath, home.path(QStringLiteral(".claude")));
        QCOMPARE(claude.detectedPath,
                 row.found ? std::optional{home.path(QString::fromLatin1(row.found))}
                           : std::nullopt);
    }

    void knowsTheBridge_data()
    {
        test::table<BridgeRow>({
            {"inside a longer command",
             R"({"statusLine":{"command":"python3 '/a b/tallyglass-statusline-bridge.py' --x"}})",
             true},
            {"another command", R"({"statusLine":{"command":"prompt.sh"}})", false},
            {"not a string", R"({"statusLine":{"command":["tallyglass-statusline-bridge.py"]}})",
             false},
            {"not an object", R"({"statusLine":"tallyglass-statusline-bridge.py"})", false},
            {"no JSON", "tallyglass-statusline-bridge.py", false},
        });
    }
    void knowsTheBridge()
    {
        const auto row = test::currentRow<BridgeRow>();
        const test::TemporaryHome home;
        home.write(QStringLiteral(".claude/settings.json"), row.settings);
        const Host host{.homeFolder = home.path()};
        QCOMPARE(claudeBridgeConfigured(host), row.isConfigured);
        QVERIFY(detectAll(host)[1].integrationHint.has_value());
        QVERIFY(!detectAll(host)[0].integrationHint.has_value());
    }
};

QTEST_GUILESS_MAIN(CLIDetectionTest)
#include "CLIDetectionTest.moc"
