#include "services/CLIDetection.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"

using namespace tallyglass;

namespace {

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
    /// With the tool everywhere at once: each place is found when those before it are empty.
    void findsTheToolInOrder()
    {
        const test::TemporaryHome home;
        const Host host{.homeFolder = home.path(),
                        .searchPath = {QStringLiteral("."), home.path(QStringLiteral("bin"))}};
        QStringList places;
        for (const char *folder :
             {".local/bin", ".volta/bin", ".asdf/shims", ".bun/bin", ".npm-global/bin", "bin",
              ".nvm/versions/node/v22/bin", ".nodenv/versions/22/bin",
              ".fnm/node-versions/v22/installation/bin"})
            places += home.write(QString::fromLatin1(folder) + QStringLiteral("/claude"));
        QCOMPARE(detectAll(host)[1].detectedPath, std::nullopt); // Existence is not enough.
        home.write(QStringLiteral("here/claude"));
        for (const QString &place : places + QStringList{home.path(QStringLiteral("here/claude"))})
            QFile::setPermissions(place, QFile::ReadOwner | QFile::ExeOwner);
        QDir::setCurrent(home.path(QStringLiteral("here"))); // where nobody looks

        for (const QString &place : std::as_const(places)) {
            QCOMPARE(detectAll(host)[1].detectedPath, place);
            QFile::remove(place);
            QDir().mkdir(place); // A folder of that name is no tool.
        }
        const auto statuses = detectAll(host);
        QCOMPARE(statuses.size(), allProviders.size());
        QCOMPARE(statuses[1].detectedPath, std::nullopt);
        QCOMPARE(statuses[1].executableName, QStringLiteral("claude"));
        QCOMPARE(statuses[1].dataPath, home.path(QStringLiteral(".claude")));
        QVERIFY(statuses[1].integrationHint && !statuses[0].integrationHint);
    }

    void knowsTheBridge_data()
    {
        test::table<BridgeRow>({
            {"inside a longer command",
             R"({"statusLine":{"command":"python3 '/a b/tallyglass-statusline-bridge.py' --x"}})",
             true},
            {"another command", R"({"statusLine":{"command":"prompt.sh"}})", false},
            {"not an object", R"({"statusLine":"tallyglass-statusline-bridge.py"})", false},
        });
    }
    void knowsTheBridge()
    {
        const auto row = test::currentRow<BridgeRow>();
        const test::TemporaryHome home;
        home.write(QStringLiteral(".claude/settings.json"), row.settings);
        QCOMPARE(claudeBridgeConfigured({.homeFolder = home.path()}), row.isConfigured);
    }
};

QTEST_GUILESS_MAIN(CLIDetectionTest)
#include "CLIDetectionTest.moc"
