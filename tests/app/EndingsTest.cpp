#include "support/Machine.h"
#include "support/Table.h"
#include "ui/MenuBarExtra.h"

#include <QElapsedTimer>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

using test::Machine;

/// What goes on when the program ends.
struct EndingRow
{
    const char *name;
    void (*prepare)(Machine &machine);
    bool (*hasCome)(const Machine &machine);
    bool isOpen = false; ///< the panel
};

bool isRefreshing(const Machine &machine)
{
    return machine.model.isRefreshing();
}

bool hasAsked(const Machine &machine, const QString &host)
{
    const auto &requests = machine.fake.http.requests;
    return !requests.empty() && requests.back().url.host() == host;
}

const auto api = QStringLiteral("api.example");
const auto feed = QStringLiteral("feed.example");

} // namespace

class EndingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ends_data()
    {
        const auto silentEndpoint = [](Machine &machine) { machine.fake.http.silentHost = api; };
        const auto isEndpointAsked = [](const Machine &machine) { return hasAsked(machine, api); };
        test::table<EndingRow>({
            {"at once", [](Machine &) {}, [](const Machine &) { return true; }},
            {"while tools are looked for", [](Machine &) {}, isRefreshing},
            {"while logs are read", [](Machine &) {},
             [](const Machine &machine) {
                 return machine.model.cliStatuses()[1].detectedPath.has_value();
             }},
            {"while it writes", [](Machine &) {},
             [](const Machine &machine) {
                 return machine.model.snapshot().generatedAt == machine.fake.clock.now();
             }},
            {"while the keychain asks",
             [](Machine &machine) { machine.fake.keychain.isSlow = true; },
             [](const Machine &machine) { return machine.fake.keychain.questions == 1; }},
            {"while the endpoint is asked", silentEndpoint, isEndpointAsked},
            {"while the endpoint is asked and the panel is open", silentEndpoint, isEndpointAsked,
             true},
            {"while an alert is raised",
             [](Machine &machine) {
                 machine.fake.defaults.values.insert(QStringLiteral("alertsEnabled"), true);
                 machine.fake.http.replies = {{200, R"({"five_hour":{"utilization":85}})"}};
                 machine.fake.http.silentHost = feed;
             },
             [](const Machine &machine) { return !machine.fake.notifier.posted.empty(); }},
            {"while the feed is asked",
             [](Machine &machine) { machine.fake.http.silentHost = feed; },
             [](const Machine &machine) { return hasAsked(machine, feed); }},
            {"while the feed is read",
             [](Machine &machine) {
                 machine.fake.http.replies = {{}, {200, QByteArray(900'000, '<')}};
             },
             [](const Machine &machine) { return hasAsked(machine, feed); }},
            {"while a tool runs",
             [](Machine &machine) {
                 machine.writeToken(60s);
                 machine.fake.processes.isSlow = true;
             },
             [](const Machine &machine) { return machine.model.isRefreshingToken(); }},
            {"while it waits for the next refresh", [](Machine &) {},
             [](const Machine &machine) {
                 return machine.fake.widgets.reloads > 0 && !isRefreshing(machine);
             },
             true},
        });
    }
    void ends()
    {
        const auto row = test::currentRow<EndingRow>();
        Machine machine;
        machine.ports.host.feedUrl = QStringLiteral("https://feed.example/appcast.xml");
        machine.writeExecutable(QStringLiteral(".local/bin/claude"));
        machine.writeToken(1h);
        row.prepare(machine);
        const auto keychain = machine.ports.keychain;
        AppUpdater updater(machine.ports.host, nullptr);
        auto extra = std::make_unique<MenuBarExtra>(machine.model, updater, machine.ports);
        if (row.isOpen)
            extra->openPanel();
        machine.fake.clock.advance(1s); // so that a new snapshot differs from the first
        machine.model.start();
        while (!row.hasCome(machine))
            QCoreApplication::processEvents();

        QElapsedTimer time;
        time.start();
        extra.reset();
        machine.app.reset();
        QVERIFY(time.elapsed() < 1500);
        // Whatever were left of it would go on now, on objects that are gone.
        machine.fake.keychain.answer();
        QCoreApplication::processEvents();
        QCOMPARE(QDir(machine.home.path()).entryList({QStringLiteral("tallyglass-*")}),
                 QStringList());
    }
};

QTEST_MAIN(EndingsTest)
#include "EndingsTest.moc"
