#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "support/FakePorts.h"
#include "support/QuickItems.h"
#include "support/TemporaryHome.h"
#include "ui/PanelViewModel.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;

class PanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsOneRowForEachProvider()
    {
        const test::TemporaryHome home;
        test::FakePorts machine(home.path());
        ClaudeUsageAPI api(machine.ports.host, machine.clock, machine.http, machine.keychain);
        AppUpdateChecker updates(machine.clock, machine.http, machine.ports.host);
        UsageModel model(machine.ports, api, updates);
        AppUpdater updater(machine.ports.host, nullptr);
        PanelViewModel viewModel(model, updater, machine.defaults, machine.clock);

        QQmlEngine engine;
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        QQmlComponent component(
            &engine, QUrl(QStringLiteral("qrc:/qt/qml/Tallyglass/qml/MenuBarPanel.qml")));
        QVERIFY2(component.isReady(), qPrintable(component.errorString()));
        const std::unique_ptr<QObject> made(component.createWithInitialProperties(
            {{QStringLiteral("viewModel"), QVariant::fromValue(&viewModel)}}));
        const auto *panel = qobject_cast<QQuickItem *>(made.get());
        QVERIFY2(panel, qPrintable(component.errorString()));
        QCOMPARE(test::itemsNamed(QStringLiteral("providerRow"), *panel).size(), 3);
    }
};

QTEST_MAIN(PanelTest)
#include "PanelTest.moc"
