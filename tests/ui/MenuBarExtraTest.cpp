#include "ui/MenuBarExtra.h"

#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "store/BudgetsFile.h"
#include "support/FakePorts.h"
#include "support/QuickItems.h"
#include "support/TemporaryHome.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

#include <QGuiApplication>
#include <QQuickView>
#include <QSignalSpy>
#include <QtQml/qqmlextensionplugin.h>

#include <set>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;

namespace {

/// The program's windows on a machine of fakes that has no tray.
struct Desktop
{
    test::TemporaryHome home;
    test::FakePorts machine{home.path()};
    ClaudeUsageAPI api{machine.ports.host, machine.clock, machine.http, machine.keychain};
    AppUpdateChecker updates{machine.clock, machine.http, machine.ports.host};
    UsageModel model{machine.ports, api, updates};
    AppUpdater updater{machine.ports.host, nullptr};
    MenuBarExtra extra{model, updater, machine.ports};

    QQuickView &openedPanel()
    {
        extra.openPanel();
        return *extra.panel();
    }
    QQuickView &openedSettings()
    {
        extra.openSettings();
        return *extra.settings();
    }
};

} // namespace

class MenuBarExtraTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QLocale::setDefault(QLocale(QLocale::Japanese, QLocale::Japan));
        QTest::failOnWarning(QRegularExpression(QStringLiteral("qml"))); // any of a QML file
    }

    void keysOpenAndCloseTheWindows()
    {
        Desktop desktop;
        QQuickView &panel = desktop.openedPanel();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        QVERIFY(panel.width() >= 300 && panel.height() >= 300);
        QTest::keyClick(&panel, Qt::Key_Comma, Qt::ControlModifier);
        QVERIFY(!panel.isVisible());
        QQuickView &settings = *desktop.extra.settings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        QTest::keyClick(&settings, Qt::Key_Escape);
        QVERIFY(!settings.isVisible());

        desktop.extra.openPanel();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        QTest::keyClick(&panel, Qt::Key_Escape);
        QVERIFY(!panel.isVisible());
    }

    void aKeyRefreshes()
    {
        Desktop desktop;
        QQuickView &panel = desktop.openedPanel();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        QTest::keyClick(&panel, Qt::Key_R, Qt::ControlModifier);
        QVERIFY(desktop.model.isRefreshing());
        QTRY_VERIFY(!desktop.model.isRefreshing());
    }

    void aBudgetIsTypedAndFoundOnDisk()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        const auto fields = test::itemsNamed(QStringLiteral("budget"), *settings.rootObject());
        QCOMPARE(fields.size(), 6);
        const auto type = [&](QQuickItem &field, const char *text) {
            field.forceActiveFocus(Qt::TabFocusReason);
            for (const char *key = text; *key; ++key)
                QTest::keyClick(&settings, *key);
        };
        const auto budget = [&] {
            return loadBudgets(StorageLocations(desktop.machine.ports.host))
                .budget(UsageProvider::Codex, UsageWindowKind::FiveHours);
        };

        type(*fields[0], "777");
        QTest::keyClick(&settings, Qt::Key_Tab);
        QCOMPARE(budget(), 777);
        QVERIFY(fields[1]->hasActiveFocus()); // which storing must not take away

        type(*fields[0], "-5");
        QTest::keyClick(&settings, Qt::Key_Return);
        QCOMPARE(budget(), 0);
        QCOMPARE(fields[0]->property("text").toString(), QStringLiteral("0"));

        // Esc first takes back what was typed, and then closes the window.
        type(*fields[0], "12");
        QTest::keyClick(&settings, Qt::Key_Escape);
        QCOMPARE(fields[0]->property("text").toString(), QStringLiteral("0"));
        QVERIFY(settings.isVisible());
        QTest::keyClick(&settings, Qt::Key_Escape);
        QVERIFY(!settings.isVisible());
        QCOMPARE(budget(), 0);
    }

    void whatIsBeingTypedIsStoredWhenTheProgramEnds()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        test::itemsNamed(QStringLiteral("budget"), *settings.rootObject())[0]->forceActiveFocus();
        QTest::keyClick(&settings, Qt::Key_7);
        desktop.extra.quit();
        QCOMPARE(loadBudgets(StorageLocations(desktop.machine.ports.host))
                     .budget(UsageProvider::Codex, UsageWindowKind::FiveHours),
                 7);
    }

    void aRefusedLoginItemSwitchesBack()
    {
        Desktop desktop;
        desktop.machine.loginItem.refusal = QStringLiteral("Operation not permitted");
        QQuickView &settings = desktop.openedSettings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        QQuickItem &item =
            *test::itemsNamed(QStringLiteral("launchAtLogin"), *settings.rootObject())[0];
        item.forceActiveFocus();
        QTest::keyClick(&settings, Qt::Key_Space);
        QVERIFY(!item.property("checked").toBool());
        const QQuickItem &error =
            *test::itemsNamed(QStringLiteral("launchAtLoginError"), *settings.rootObject())[0];
        QVERIFY(error.isVisible());
        QCOMPARE(error.property("text").toString(), QStringLiteral("Operation not permitted"));
    }

    void tabReachesEverything()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        std::set<QString> reached;
        for (int i = 0; i < 14; ++i) {
            QTest::keyClick(&settings, Qt::Key_Tab);
            const QQuickItem *item = settings.activeFocusItem();
            reached.insert(item->objectName());
            const QRectF place = item->mapRectToScene(item->boundingRect());
            QVERIFY2(settings.contentItem()->boundingRect().contains(place),
                     qPrintable(item->objectName())); // scrolled to where it is seen
        }
        for (const char *name :
             {"recheck", "alertsEnabled", "alertThreshold", "budget", "openSite", "launchAtLogin"})
            QVERIFY2(reached.contains(QString::fromLatin1(name)), name);
    }
};

QTEST_MAIN(MenuBarExtraTest)
#include "MenuBarExtraTest.moc"
