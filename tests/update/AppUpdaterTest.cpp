#include "update/AppUpdater.h"

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

class FakeEngine final : public UpdaterEngine
{
public:
    void start() override { ++starts; }
    bool canCheckForUpdates() const override { return canCheck; }
    void checkForUpdates() override
    {
        ++checks;
        setCanCheck(false);
    }
    void setCanCheck(bool value)
    {
        canCheck = value;
        Q_EMIT canCheckForUpdatesChanged();
    }

    bool canCheck = true;
    int starts = 0;
    int checks = 0;
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
            {"no feed", "", key, false},
            {"feed that is no address", "not an address", key, false},
            {"feed not expanded", "$(SU_FEED_URL)", key, false},
            {"part of the feed not expanded", url + "?channel=$(CHANNEL)", key, false},
            {"no key", url, "", false},
            {"key of white space", url, " \n\t", false},
            {"key not expanded", url, "$(SU_PUBLIC_ED_KEY)", false},
        });
    }
    void configuration()
    {
        const auto row = test::currentRow<ConfigurationRow>();
        const Host host{.feedUrl = QString::fromUtf8(row.feedUrl),
                        .publicKey = QString::fromUtf8(row.publicKey)};
        QCOMPARE(isConfiguredForUpdates(host), row.isConfigured);

        FakeEngine engine;
        AppUpdater updater(host, &engine);
        QCOMPARE(updater.isConfigured(), row.isConfigured);
        QCOMPARE(engine.starts, row.isConfigured ? 1 : 0);
        QCOMPARE(updater.canCheckForUpdates(), row.isConfigured);
        updater.checkForUpdates();
        QCOMPARE(engine.checks, row.isConfigured ? 1 : 0);
    }

    void withoutAnEngineNothingIsConfigured()
    {
        AppUpdater updater(configured, nullptr);
        QVERIFY(!updater.isConfigured());
        QVERIFY(!updater.canCheckForUpdates());
        updater.checkForUpdates();
    }

    void noCheckWhileOneRuns()
    {
        FakeEngine engine;
        AppUpdater updater(configured, &engine);
        const QSignalSpy changed(&updater, &AppUpdater::canCheckForUpdatesChanged);

        updater.checkForUpdates();
        QVERIFY(!updater.canCheckForUpdates());
        QCOMPARE(changed.count(), 1);
        engine.setCanCheck(false);
        QCOMPARE(changed.count(), 1);
        engine.setCanCheck(true);
        QVERIFY(updater.canCheckForUpdates());
        QCOMPARE(changed.count(), 2);
    }
};

QTEST_GUILESS_MAIN(AppUpdaterTest)
#include "AppUpdaterTest.moc"
