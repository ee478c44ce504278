#include "ui/MenuBarExtra.h"

#include "store/BudgetsFile.h"
#include "support/PanelMachine.h"
#include "support/QuickItems.h"

#include <QRegularExpression>
#include <QtQml/qqmlextensionplugin.h>

#include <set>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;

namespace {

/// The program's windows on a machine of fakes that has no tray.
struct Desktop : test::PanelMachine
{
    QQuickView &openedPanel()
    {
        extra.openPanel();
        return activated(*extra.panel());
    }
    QQuickView &openedSettings()
    {
        extra.openSettings();
        return activated(*extra.settings());
    }
    QList<QQuickItem *> inSettings(const char *name) const
    {
        return test::itemsNamed(QString::fromLatin1(name), *extra.settings()->rootObject());
    }
    std::int64_t budget() const
    {
        return loadBudgets(StorageLocations(ports.host))
            .budget(UsageProvider::Codex, UsageWindowKind::FiveHours);
    }

    MenuBarExtra extra{model, updater, ports};

private:
    static QQuickView &activated(QQuickView &view)
    {
        if (!QTest::qWaitForWindowActive(&view))
            qFatal("the window does not become active");
        return view;
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
        QVERIFY(panel.width() >= 300 && panel.height() >= 300);
        QTest::keyClick(&panel, Qt::Key_Comma, Qt::ControlModifier);
        QVERIFY(!panel.isVisible());
        QQuickView &settings = *desktop.extra.settings();
        QVERIFY(QTest::qWaitForWindowActive(&settings));
        QTest::keyClick(&settings, Qt::Key_Escape);
        QVERIFY(!settings.isVisible());

        desktop.openedPanel();
        QTest::keyClick(&panel, Qt::Key_R, Qt::ControlModifier);
        QVERIFY(desktop.model.isRefreshing());
        QTRY_VERIFY(!desktop.model.isRefreshing());
        QTest::keyClick(&panel, Qt::Key_Escape);
        QVERIFY(!panel.isVisible());
    }

    void aBudgetIsTypedAndFoundOnDisk()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
        const auto fields = desktop.inSettings("budget");
        QCOMPARE(fields.size(), 6);
        const auto type = [&](QQuickItem &field, const char *text) {
            field.forceActiveFocus(Qt::TabFocusReason);
            for (const char *key = text; *key; ++key)
                QTest::keyClick(&settings, *key);
        };

        type(*fields[0], "777");
        QTest::keyClick(&settings, Qt::Key_Tab);
        QCOMPARE(desktop.budget(), 777);
        QVERIFY(fields[1]->hasActiveFocus()); // which storing must not take away

        type(*fields[0], "-5");
        QTest::keyClick(&settings, Qt::Key_Return);
        QCOMPARE(desktop.budget(), 0);
        QCOMPARE(fields[0]->property("text").toString(), QStringLiteral("0"));

        // Esc first takes back what was typed, and then closes the window.
        type(*fields[0], "12");
        QTest::keyClick(&settings, Qt::Key_Escape);
        QCOMPARE(fields[0]->property("text").toString(), QStringLiteral("0"));
        QVERIFY(settings.isVisible());
        QTest::keyClick(&settings, Qt::Key_Escape);
        QVERIFY(!settings.isVisible());
        QCOMPARE(desktop.budget(), 0);
    }

    void whatIsBeingTypedIsStoredWhenTheProgramEnds()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
        desktop.inSettings("budget").front()->forceActiveFocus();
        QTest::keyClick(&settings, Qt::Key_7);
        desktop.extra.quit();
        QCOMPARE(desktop.budget(), 7);
    }

    void aRefusedLoginItemSwitchesBack()
    {
        Desktop desktop;
        desktop.fake.loginItem.refusal = QStringLiteral("Operation not permitted");
        QQuickView &settings = desktop.openedSettings();
        QQuickItem &item = *desktop.inSettings("launchAtLogin").front();
        item.forceActiveFocus();
        QTest::keyClick(&settings, Qt::Key_Space);
        QVERIFY(!item.property("checked").toBool());
        const QQuickItem &error = *desktop.inSettings("launchAtLoginError").front();
        QVERIFY(error.isVisible());
        QCOMPARE(error.property("text").toString(), QStringLiteral("Operation not permitted"));

        desktop.fake.loginItem.refusal.reset();
        QTest::keyClick(&settings, Qt::Key_Space);
        QVERIFY(item.property("checked").toBool());
        QVERIFY(!error.isVisible());
    }

    void tabReachesEverything()
    {
        Desktop desktop;
        QQuickView &settings = desktop.openedSettings();
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
