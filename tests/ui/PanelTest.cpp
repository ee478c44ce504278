#include "app/DemoHome.h"
#include "support/PanelMachine.h"
#include "support/QuickItems.h"
#include "support/TestData.h"

#include <QAccessible>
#include <QDesktopServices>
#include <QFont>
#include <QLocale>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// A panel on the screen.
struct OpenPanel
{
    explicit OpenPanel(PanelViewModel &viewModel)
        : view(viewModel)
    {
    }

    QList<QQuickItem *> items(const char *name) const
    {
        return test::itemsNamed(QString::fromLatin1(name), *view.rootObject());
    }
    QQuickItem &item(const char *name) const
    {
        const auto found = items(name);
        if (found.size() != 1)
            qFatal("%d items are named %s", static_cast<int>(found.size()), name);
        return *found.front();
    }
    QString text(const char *name) const { return item(name).property("text").toString(); }
    bool shows(const char *name) const { return item(name).isVisible(); }
    void click(const char *name) { clickAt(item(name), 0.5); }
    /// Clicks that far from the left, as a fraction of the width.
    void clickAt(const QQuickItem &item, double place)
    {
        const QPointF point{item.width() * place, item.height() / 2};
        QTest::mouseClick(&view, Qt::LeftButton, {}, item.mapToScene(point).toPoint());
    }

    test::PanelView view;
};

/// A panel in the demo's home, which has been read.
struct DemoPanel : private DemoHome, public test::PanelMachine, public OpenPanel
{
    DemoPanel()
        : DemoHome(test::FakeClock().now())
        , PanelMachine(path())
        , OpenPanel(viewModel)
    {
        QCoro::waitFor(model.refresh());
    }
};

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
        test::PanelMachine machine;
        const OpenPanel panel(machine.viewModel);
        for (const char *notice : {"updateNotice", "tokenNotice"})
            QVERIFY2(!panel.shows(notice), notice);
        QVERIFY(panel.shows("noHistory"));
        QVERIFY(panel.shows("noModels"));
        QCOMPARE(panel.text("reset"), QStringLiteral("リセット データなし"));
        QCOMPARE(panel.items("providerRow").size(), 3);
    }

    void showsWhatARefreshBrings()
    {
        const DemoPanel panel;
        QCOMPARE(panel.text("updated"), QStringLiteral("更新 21:30"));
        QCOMPARE(panel.text("reset"), QStringLiteral("リセット あと1時間47分"));
        QVERIFY(panel.shows("chart"));
        QVERIFY(!panel.shows("cliNotice"));
        QCOMPARE(panel.items("tokens").front()->property("text").toString(),
                 QStringLiteral("219K"));
        QCOMPARE(panel.items("modelName").size(), 5);
        // What a log calls a model is no markup: that could fetch a picture from anywhere.
        QCOMPARE(panel.items("modelName").front()->property("textFormat").toInt(),
                 int(Qt::PlainText));
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
        test::PanelMachine machine({}, publicKey);
        machine.fake.http.replies = {{200, test::testData("feed-release-notes.xml")}};
        QCoro::waitFor(machine.model.refresh());
        OpenPanel panel(machine.viewModel);
        QVERIFY(panel.shows("updateNotice"));
        QVERIFY(panel.text("releaseNotes").startsWith(QStringLiteral("• 履歴")));

        Browser browser;
        panel.click("releaseNotesLink");
        QCOMPARE(browser.opened, {QUrl(QStringLiteral("https://lantern.example/notes/2.0"))});
        const bool isConfigured = !publicKey.isEmpty();
        QCOMPARE(panel.shows("update"), isConfigured);
        QCOMPARE(panel.shows("openSite"), !isConfigured);
        QCOMPARE(panel.item("checkForUpdates").isEnabled(), isConfigured);
        panel.click(isConfigured ? "update" : "openSite");
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
        test::PanelMachine machine;
        if (isToolThere)
            machine.writeExecutable(QStringLiteral(".local/bin/claude"));
        QCoro::waitFor(machine.model.refresh());
        OpenPanel panel(machine.viewModel);
        QVERIFY(panel.shows("tokenNotice"));
        QVERIFY(panel.shows("cliNotice")); // Of the other tools, at least.
        QCOMPARE(panel.item("refreshToken").isEnabled(), isToolThere);
        panel.click("refreshToken");
        QCOMPARE(machine.fake.processes.jobs.size(), std::size_t{isToolThere ? 1U : 0U});
        QTRY_VERIFY(!machine.model.isRefreshing());
    }

    void remembersTheChoices()
    {
        test::PanelMachine machine;
        QCOMPARE(machine.viewModel.windowIndex(), 0);
        QCOMPARE(machine.viewModel.historyIndex(), 0);
        auto &stored = machine.fake.defaults.values;
        stored[QStringLiteral("selectedWindow")] = QStringLiteral("week");
        QCOMPARE(machine.viewModel.windowIndex(), 3);
        stored[QStringLiteral("selectedWindow")] = QStringLiteral("fortnight");
        stored[QStringLiteral("historyRange")] = QStringLiteral("decade");
        QCOMPARE(machine.viewModel.windowIndex(), 0);
        QCOMPARE(machine.viewModel.historyIndex(), 1);
    }

    void choosesByMouseAndKeyboard()
    {
        DemoPanel panel;
        const auto stored = [&](const char *key) {
            return panel.fake.defaults.values.value(QString::fromLatin1(key)).toString();
        };
        QQuickItem &picker = panel.item("window");
        panel.clickAt(picker, 0.97);
        QCOMPARE(stored("selectedWindow"), QStringLiteral("month"));
        picker.forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&panel.view, Qt::Key_Right);
        QCOMPARE(stored("selectedWindow"), QStringLiteral("month"));
        QTest::keyClick(&panel.view, Qt::Key_Left);
        QCOMPARE(stored("selectedWindow"), QStringLiteral("week"));
        QCOMPARE(panel.text("reset"), QStringLiteral("リセット あと3日4時間"));

        panel.item("historyRange").forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&panel.view, Qt::Key_Right);
        QCOMPARE(stored("historyRange"), QStringLiteral("week"));
        QCOMPARE(panel.viewModel.history().range, HistoryRange::Week);
    }

    void rowsStayWhenTheirFiguresChange()
    {
        test::PanelMachine machine;
        machine.home.write(
            QStringLiteral(".codex/sessions/rollout-1.jsonl"),
            R"({"timestamp":"2024-05-01T12:00:00Z","model":"gpt-5","total_tokens":9})");
        QCoro::waitFor(machine.model.refresh());
        const OpenPanel panel(machine.viewModel);
        const QList<QQuickItem *> providers = panel.items("providerRow");
        const QList<QQuickItem *> models = panel.items("modelName");
        QCOMPARE(models.size(), 1);
        machine.fake.clock.advance(1min);
        QCoro::waitFor(machine.model.refresh());
        QCOMPARE(panel.items("providerRow"), providers);
        QCOMPARE(panel.items("modelName"), models);
    }

    void namesOnlyTheToolsInTheRange()
    {
        test::PanelMachine machine;
        const auto sample = [](const char *provider, const char *date) {
            return QStringLiteral(R"({"id":"%1","date":"%2","provider":"%3","fiveHourPercent":0.5,)"
                                  R"("weekPercent":0.5,"totalTokens":1})")
                .arg(QUuid::createUuid().toString(QUuid::WithoutBraces), QLatin1String(date),
                     QLatin1String(provider));
        };
        machine.home.write(
            QStringLiteral("Library/Application Support/Tallyglass/usage_history.json"),
            QStringLiteral("[%1,%2]")
                .arg(sample("codex", "2024-04-29T10:30:00Z"),
                     sample("claude", "2024-05-01T10:30:00Z"))
                .toUtf8());
        QCoro::waitFor(machine.model.refresh());
        const OpenPanel panel(machine.viewModel);
        QCOMPARE(panel.text("legend"), QStringLiteral("Claude"));
        machine.viewModel.setHistoryIndex(1);
        QCOMPARE(panel.items("legend").size(), 2);
        machine.viewModel.setHistoryIndex(0);
        QCOMPARE(panel.text("legend"), QStringLiteral("Claude"));
    }

    void countsDownAnewWhenItOpens()
    {
        DemoPanel panel;
        panel.view.hide();
        panel.fake.clock.advance(60min);
        QCOMPARE(panel.text("reset"), QStringLiteral("リセット あと1時間47分"));
        panel.view.show();
        QCOMPARE(panel.text("reset"), QStringLiteral("リセット あと47分"));
    }

    void tellsTheFiguresUnderThePointer()
    {
        DemoPanel panel;
        const auto legend = [&] {
            QStringList texts;
            for (const QQuickItem *item : panel.items("legend"))
                texts += item->property("text").toString();
            return texts.join(u' ');
        };
        QCOMPARE(legend(), QStringLiteral("Codex Claude Copilot"));
        const QQuickItem &chart = panel.item("chart");
        QTest::mouseMove(&panel.view, chart.mapToScene({chart.width() * 0.86, 40}).toPoint());
        QTRY_VERIFY(legend().endsWith(u'%'));
        QVERIFY(!panel.text("pointedTime").isEmpty());
        QTest::mouseMove(&panel.view, {5, 5});
        QTRY_COMPARE(legend(), QStringLiteral("Codex Claude Copilot"));
    }

    void asksForSettingsAndEnd()
    {
        test::PanelMachine machine;
        OpenPanel panel(machine.viewModel);
        const QSignalSpy settings(panel.view.rootObject(), SIGNAL(settingsRequested()));
        const QSignalSpy end(panel.view.rootObject(), SIGNAL(quitRequested()));
        panel.click("settings");
        panel.click("cliIntegration");
        QCOMPARE(settings.size(), 2);
        panel.click("quit");
        QCOMPARE(end.size(), 1);
    }

    /// Each thing that is read stands below or to the right of the one before it, and the gauges
    /// tell their figures.
    void isReadInTheOrderInWhichItStands()
    {
        DemoPanel panel;
        QStringList names;
        QRect before;
        for (QAccessibleInterface *item :
             readable(*QAccessible::queryAccessibleInterface(&panel.view))) {
            const QRect place = item->rect();
            names += item->text(QAccessible::Name);
            QVERIFY2(place.top() >= before.top() || place.left() >= before.right(),
                     qPrintable(names.join(QStringLiteral(", "))));
            before = place;
        }
        for (const char *expected : {"使用量 64%", "リセットまで 48m", "設定", "claude-haiku-4-5 110K",
                                     "使用履歴 Codex 63%, Claude 82%, Copilot 9%"})
            QVERIFY2(names.contains(QString::fromUtf8(expected)), expected);
    }
};

QTEST_MAIN(PanelTest)
#include "PanelTest.moc"
