#include "update/AppUpdater.h"

#include "support/FakePorts.h"
#include "support/Table.h"

#include <QSignalSpy>

using namespace tallyglass;

namespace {

struct ConfigurationRow
{
    const char *name;
    QByteArray feedUrl;
    QByteArray publicKey;
    bool isConfigured;
};

const Host configured{.feedUrl = QStringLiteral("https://lantern.example/appcast.xml"),
                      .publicKey = QStringLiteral("bm90IGEga2V5")};

} // namespace

class AppUpdaterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configuration_data()
    {
        const QByteArray url = configured.feedUrl.toUtf8();
        const QByteArray key = configured.publicKey.toUtf8();
        test::table<ConfigurationRow>({
            {"complete", url, key, true},
            {"feed that is no address", "not an address", key, false},
            {"part of the feed not expanded", url + "?channel=$(CHANNEL)", key, false},
            {"key of white space", url, " \n\t", false},
            {"key not expanded", url, "$(SU_PUBLIC_ED_KEY)", false},
        });
    }
    void configuration()
    {
        const auto row = test::currentRow<ConfigurationRow>();
        const Host host{.feedUrl = QString::fromUtf8(row.feedUrl),
                        .publicKey = QString::fromUtf8(row.publicKey)};
        test::FakeUpdaterEngine engine;
        AppUpdater updater(host, &engine);
        QCOMPARE(updater.isConfigured(), row.isConfigured);
        QCOMPARE(engine.starts, row.isConfigured ? 1 : 0);
        QCOMPARE(updater.canCheckForUpdates(), row.isConfigured);
        updater.checkForUpdates();
        QCOMPARE(engine.checks, row.isConfigured ? 1 : 0);
    }

    void noCheckWhileOneRuns()
    {
        test::FakeUpdaterEngine engine;
        AppUpdater updater(configured, &engine);
        const QSignalSpy changed(&updater, &AppUpdater::canCheckForUpdatesChanged);

        updater.checkForUpdates();
        QVERIFY(!updater.canCheckForUpdates());
        engine.setCanCheck(true);
        QVERIFY(updater.canCheckForUpdates());
        QCOMPARE(changed.count(), 2);
    }
};

QTEST_GUILESS_MAIN(AppUpdaterTest)
#include "AppUpdaterTest.moc"
