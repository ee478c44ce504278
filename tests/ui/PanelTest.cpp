#include "app/DemoHome.h"
#include "model/IsoDateTime.h"
#include "support/PanelMachine.h"
#include "support/QuickItems.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/TestData.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QFont>
#include <QLocale>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

QQuickItem &itemNamed(const char *name, const QQuickView &view)
{
    const auto items = test::itemsNamed(QString::fromLatin1(name), *view.rootObject());
    if (items.size() != 1)
        qFatal("%d items are named %s", static_cast<int>(items.size()), name);
    return *items.front();
}

QString textOf(const char *name, const QQuickView &view)
{
    return itemNamed(name, view).property("text").toString();
}

bool isShown(const char *name, const QQuickView &view)
{
    return itemNamed(name, view).isVisible();
}

QPoint middleOf(const QQuickItem &item)
{
    return item.mapToScene(item.boundingRect().center()).toPoint();
}

void click(const char *name, QQuickView &view)
{
    QTest::mouseClick(&view, Qt::LeftButton, {}, middleOf(itemNamed(name, view)));
}

/// Remembers the links that are opened, instead of a browser.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    Q_INVOKABLE void open(const QUrl &url) { opened += url; }

    QList<QUrl> opened;
};

/// What a screen reader can stop at, in its order.
QList<QAccessibleInterface *> readable(QAccessibleInterface &parent)
{
    QList<QAccessibleInterface *> found;
    for (int i = 0; i < parent.childCount(); ++i) {
        QAccessibleInterface *child = parent.child(i);
        if (child->state().invisible)
            continue;
        if (!child->text(QAccessible::Name).isEmpty() && child->childCount() == 0)
            found += child;
        found += readable(*child);
    }
    return found;
}

} // namespace

class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::Japanese));
        QFont font(QStringLiteral("Noto Sans CJK JP"));
        font.setPixelSize(13);
        QGuiApplication::setFont(font);
        test::usePalette(false);
        QAccessible::setActive(true);
    }
    void init()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral("qml"))); // any of a QML file
    }

    void saysNothingWithoutOccasion()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        test::PanelView view(machine.viewModel);
        for (const char *notice : {"updateNotice", "tokenNotice", "cliNotice"})
            QVERIFY2(!isShown(notice, view), notice);
        QVERIFY(isShown("noHistory", view));
        QVERIFY(isShown("noModels", view));
        QCOMPARE(textOf("reset", view), QStringLiteral("リセット データなし"));
        QCOMPARE(test::itemsNamed(QStringLiteral("providerRow"), *view.rootObject()).size(), 3);
    }

    void showsWhatARefreshBrings()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        test::PanelView view(machine.viewModel);
        QCoro::waitFor(machine.model.refresh());
        QCOMPARE(textOf("updated", view), QStringLiteral("更新 21:30"));
        QCOMPARE(textOf("reset", view), QStringLiteral("リセット あと1時間47分"));
        QVERIFY(isShown("chart", view));
        const auto tokens = test::itemsNamed(QStringLiteral("tokens"), *view.rootObject());
        QCOMPARE(tokens.front()->property("text").toString(), QStringLiteral("219K"));
        const auto models = test::itemsNamed(QStringLiteral("modelName"), *view.rootObject());
        QCOMPARE(models.size(), 5);
        // What a log calls a model is no markup: that could fetch a picture from anywhere.
        QCOMPARE(models.front()->property("textFormat").toInt(), int(Qt::PlainText));
    }

    void rowsStayWhenTheirFiguresChange()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        test::PanelView view(machine.viewModel);
        const auto rows = test::itemsNamed(QStringLiteral("providerRow"), *view.rootObject());
        QCoro::waitFor(machine.model.refresh());
        QCOMPARE(test::itemsNamed(QStringLiteral("providerRow"), *view.rootObject()), rows);

        const auto models = test::itemsNamed(QStringLiteral("modelName"), *view.rootObject());
        machine.viewModel.update();
        QCOMPARE(test::itemsNamed(QStringLiteral("modelName"), *view.rootObject()), models);
    }

    void namesOnlyTheToolsInTheRange()
    {
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path());
        const auto sample = [&](const char *provider, std::chrono::hours age) {
            return QStringLiteral(R"({"id":"%1","date":"%2","provider":"%3","fiveHourPercent":0.5,)"
                                  R"("weekPercent":0.5,"totalTokens":1})")
                .arg(QUuid::createUuid().toString(QUuid::WithoutBraces),
                     formatIsoDateTime(machine.fake.clock.now() - age),
                     QString::fromLatin1(provider));
        };
        home.write(QStringLiteral("Library/Application Support/Tallyglass/usage_history.json"),
                   QStringLiteral("[%1,%2,%3]")
                       .arg(sample("codex", 50h), sample("claude", 2h), sample("copilot", 50h))
                       .toUtf8());
        machine.fake.defaults.values.insert(QStringLiteral("historyRange"), QStringLiteral("week"));
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        const auto legend = [&] {
            return test::itemsNamed(QStringLiteral("legend"), *view.rootObject()).size();
        };
        QCOMPARE(legend(), 3);
        machine.viewModel.setHistoryIndex(0);
        QCOMPARE(legend(), 1);
        machine.viewModel.setHistoryIndex(1);
        QCOMPARE(legend(), 3);
    }

    void offersAnUpdate_data()
    {
        QTest::addColumn<QString>("publicKey");
        QTest::newRow("that the updater installs") << QStringLiteral("key");
        QTest::newRow("on its page") << QString();
    }
    void offersAnUpdate()
    {
        QFETCH(const QString, publicKey);
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path(), publicKey);
        machine.fake.http.replies = {{200, test::testData("feed-release-notes.xml")}};
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        QVERIFY(isShown("updateNotice", view));
        QVERIFY(textOf("releaseNotes", view).startsWith(QStringLiteral("• 履歴")));

        Browser browser;
        click("releaseNotesLink", view);
        QCOMPARE(browser.opened, {QUrl(QStringLiteral("https://lantern.example/notes/2.0"))});
        const bool isConfigured = !publicKey.isEmpty();
        QCOMPARE(isShown("update", view), isConfigured);
        QCOMPARE(isShown("openSite", view), !isConfigured);
        QCOMPARE(itemNamed("checkForUpdates", view).isEnabled(), isConfigured);
        click(isConfigured ? "update" : "openSite", view);
        QCOMPARE(machine.engine.checks, isConfigured ? 1 : 0);
        QCOMPARE(browser.opened.size(), isConfigured ? 1 : 2);
    }

    void offersToRenewTheToken_data()
    {
        QTest::addColumn<bool>("isToolThere");
        QTest::newRow("by its tool") << true;
        QTest::newRow("but not without it") << false;
    }
    void offersToRenewTheToken()
    {
        QFETCH(const bool, isToolThere);
        const test::TemporaryHome home;
        if (isToolThere)
            QFile::setPermissions(home.write(QStringLiteral(".local/bin/claude")),
                                  QFile::ReadOwner | QFile::ExeOwner);
        test::PanelMachine machine(home.path());
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        QVERIFY(isShown("tokenNotice", view));
        QVERIFY(isShown("cliNotice", view)); // Of the other tools, at least.
        QCOMPARE(itemNamed("refreshToken", view).isEnabled(), isToolThere);
        click("refreshToken", view);
        QCOMPARE(machine.fake.processes.jobs.size(), std::size_t{isToolThere ? 1U : 0U});
        QTRY_VERIFY(!machine.model.isRefreshing());
    }

    void rememberTheWindow_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("index");
        QTest::newRow("nothing stored") << QString() << 0;
        QTest::newRow("a week") << QStringLiteral("week") << 3;
        QTest::newRow("nonsense") << QStringLiteral("fortnight") << 0;
    }
    void rememberTheWindow()
    {
        QFETCH(const QString, stored);
        QFETCH(const int, index);
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path());
        if (!stored.isNull())
            machine.fake.defaults.values.insert(QStringLiteral("selectedWindow"), stored);
        QCOMPARE(machine.viewModel.windowIndex(), index);
    }

    void choosesByMouseAndKeyboard()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        const auto stored = [&](const char *key) {
            return machine.fake.defaults.values.value(QString::fromLatin1(key)).toString();
        };
        QQuickItem &picker = itemNamed("window", view);
        QTest::mouseClick(&view, Qt::LeftButton, {},
                          picker.mapToScene({picker.width() - 10, picker.height() / 2}).toPoint());
        QCOMPARE(stored("selectedWindow"), QStringLiteral("month"));
        picker.forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&view, Qt::Key_Right);
        QCOMPARE(stored("selectedWindow"), QStringLiteral("month"));
        QTest::keyClick(&view, Qt::Key_Left);
        QCOMPARE(stored("selectedWindow"), QStringLiteral("week"));
        QCOMPARE(textOf("reset", view), QStringLiteral("リセット あと3日4時間"));

        itemNamed("historyRange", view).forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&view, Qt::Key_Right);
        QCOMPARE(stored("historyRange"), QStringLiteral("week"));
        QCOMPARE(machine.viewModel.history().range, HistoryRange::Week);
    }

    void anUnknownHistoryRangeIsTheWeek()
    {
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path());
        QCOMPARE(machine.viewModel.historyIndex(), 0);
        machine.fake.defaults.values.insert(QStringLiteral("historyRange"),
                                            QStringLiteral("decade"));
        QCOMPARE(machine.viewModel.historyIndex(), 1);
    }

    void countsDownAnewWhenItOpens()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        view.hide();
        machine.fake.clock.advance(60min);
        QCOMPARE(textOf("reset", view), QStringLiteral("リセット あと1時間47分"));
        view.show();
        QCOMPARE(textOf("reset", view), QStringLiteral("リセット あと47分"));
    }

    void tellsTheFiguresUnderThePointer()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        const auto legend = [&] {
            QStringList texts;
            for (const QQuickItem *item :
                 test::itemsNamed(QStringLiteral("legend"), *view.rootObject()))
                texts += item->property("text").toString();
            return texts;
        };
        const QStringList names{QStringLiteral("Codex"), QStringLiteral("Claude"),
                                QStringLiteral("Copilot")};
        QCOMPARE(legend(), names);
        QQuickItem &chart = itemNamed("chart", view);
        QTest::mouseMove(&view, chart.mapToScene({chart.width() * 0.86, 40}).toPoint());
        QTRY_VERIFY(legend().front().endsWith(u'%'));
        QVERIFY(!textOf("pointedTime", view).isEmpty());
        QTest::mouseMove(&view, {5, 5});
        QTRY_COMPARE(legend(), names);
    }

    void followsThePaletteWhileItRuns()
    {
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path());
        test::PanelView view(machine.viewModel);
        const auto color = [&] {
            return itemNamed("updated", view).property("color").value<QColor>();
        };
        QVERIFY(color().lightness() < 128);
        test::usePalette(true);
        QTRY_VERIFY(color().lightness() > 128);
        test::usePalette(false);
    }

    void asksForSettingsAndEnd()
    {
        const test::TemporaryHome home;
        test::PanelMachine machine(home.path());
        test::PanelView view(machine.viewModel);
        const QSignalSpy settings(view.rootObject(), SIGNAL(settingsRequested()));
        const QSignalSpy end(view.rootObject(), SIGNAL(quitRequested()));
        click("settings", view);
        click("cliIntegration", view);
        QCOMPARE(settings.size(), 2);
        click("quit", view);
        QCOMPARE(end.size(), 1);
    }

    /// Each thing that is read stands below or to the right of the one before it, and the gauges
    /// tell their figures.
    void isReadInTheOrderInWhichItStands()
    {
        const DemoHome home(test::FakeClock().now());
        test::PanelMachine machine(home.path());
        QCoro::waitFor(machine.model.refresh());
        test::PanelView view(machine.viewModel);
        QStringList names;
        QRect before;
        for (QAccessibleInterface *item : readable(*QAccessible::queryAccessibleInterface(&view))) {
            const QRect place = item->rect();
            names += item->text(QAccessible::Name);
            QVERIFY2(place.top() >= before.top() || place.left() >= before.right(),
                     qPrintable(names.join(QStringLiteral(", "))));
            before = place;
        }
        for (const char *expected :
             {"使用量 64%", "リセットまで 48m", "設定", "更新", "終了", "gpt-5.1-codex 219K",
              "合計 605K", "使用履歴 Codex 63%, Claude 82%, Copilot 9%"})
            QVERIFY2(names.contains(QString::fromUtf8(expected)),
                     qPrintable(names.join(QStringLiteral(", "))));
    }
};

QTEST_MAIN(PanelTest)
#include "PanelTest.moc"
