#include "ui/SettingsViewModel.h"

#include "store/BudgetsFile.h"
#include "support/Machine.h"
#include "support/Table.h"
#include "update/AppUpdater.h"

#include <QSignalSpy>

using namespace tallyglass;

namespace {

const auto budgetsFile = QStringLiteral("Library/Application Support/Tallyglass/budgets.json");

struct Settings : test::Machine
{
    AppUpdater updater{ports.host, nullptr};
    SettingsViewModel viewModel{model, updater, ports};
};

} // namespace

struct BudgetRow
{
    const char *name;
    QString written;
    std::int64_t stored;
};

struct ThresholdRow
{
    const char *name;
    double set;
    double stored;
    QString text;
};

class SettingsViewModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::Japanese, QLocale::Japan)); }

    void aBudgetIsStoredAtOnce_data()
    {
        test::table<BudgetRow>({
            {"as it is shown", QStringLiteral("2,000,000"), 2'000'000},
            {"of an input method", QStringLiteral("２０００，０００"), 2'000'000},
            {"negative", QStringLiteral("-5"), 0},
            {"minus of an input method", QStringLiteral("－5"), 0},
            {"too large", QStringLiteral("1000000000000"), 1'250'000},
            {"beyond 64 bits", QStringLiteral("99999999999999999999999"), 1'250'000},
            {"nothing", QString(), 1'250'000},
            {"an exponent", QStringLiteral("1e9"), 1'250'000},
        });
    }
    void aBudgetIsStoredAtOnce()
    {
        const auto row = test::currentRow<BudgetRow>();
        Settings settings;
        BudgetField &field = *settings.viewModel.budgetLines()[1].fiveHours;
        QCOMPARE(field.text(), QStringLiteral("1,250,000"));
        const QSignalSpy shown(&field, &BudgetField::textChanged);
        field.enter(row.written);

        const StorageLocations locations(settings.ports.host);
        const UsageBudgets stored = loadBudgets(locations);
        QCOMPARE(stored.budget(UsageProvider::Claude, UsageWindowKind::FiveHours), row.stored);
        QCOMPARE(stored.budget(UsageProvider::Claude, UsageWindowKind::Week), 5'000'000);
        QCOMPARE(field.text(), QLocale().toString(qint64{row.stored}));
        QCOMPARE(shown.size(), 1); // What was not taken must go from the field, too.
    }

    void whatOthersStoredIsKeptAndShown()
    {
        Settings settings;
        settings.home.write(budgetsFile,
                            R"({"tokenBudgets":{"codex.month":7,"copilot.week":8000}})");
        settings.viewModel.reload();
        QCOMPARE(settings.viewModel.budgetLines()[2].week->text(), QStringLiteral("8,000"));

        settings.viewModel.budgetLines()[0].week->enter(QStringLiteral("9"));
        const QByteArray stored = settings.home.read(budgetsFile).simplified().replace(' ', "");
        QCOMPARE(
            stored,
            QByteArray(R"({"tokenBudgets":{"codex.month":7,"codex.week":9,"copilot.week":8000}})"));
    }

    void theThresholdMovesInSteps_data()
    {
        test::table<ThresholdRow>({
            {"noise of the slider", 0.5500000000000003, 0.55, QStringLiteral("しきい値 55%")},
            {"between steps", 0.71, 0.70, QStringLiteral("しきい値 70%")},
            {"above the range", 1.0, 0.95, QStringLiteral("しきい値 95%")},
        });
    }
    void theThresholdMovesInSteps()
    {
        const auto row = test::currentRow<ThresholdRow>();
        Settings settings;
        QCOMPARE(settings.viewModel.thresholdText(), QStringLiteral("しきい値 80%"));
        settings.viewModel.setAlertThreshold(row.set);
        QCOMPARE(settings.fake.defaults.values[QStringLiteral("alertThreshold")].toDouble(),
                 row.stored);
        QCOMPARE(settings.viewModel.thresholdText(), row.text);
    }

    void turningAlertsOnAsksForPermission()
    {
        Settings settings;
        QVERIFY(!settings.viewModel.alertsEnabled());
        settings.viewModel.setAlertsEnabled(true);
        QVERIFY(settings.fake.defaults.values[QStringLiteral("alertsEnabled")].toBool());
        QCOMPARE(settings.fake.notifier.permissionRequests, 1);
        settings.viewModel.setAlertsEnabled(false);
        QVERIFY(!settings.viewModel.alertsEnabled());
        QCOMPARE(settings.fake.notifier.permissionRequests, 1);
    }

    void toolsAndEndpointAreShown()
    {
        Settings settings;
        settings.writeExecutable(QStringLiteral(".local/bin/claude"));
        settings.home.write(
            QStringLiteral(".claude/settings.json"),
            R"({"statusLine":{"command":"python3 /x/tallyglass-statusline-bridge.py"}})");
        QCOMPARE(settings.viewModel.apiStatusText(), QStringLiteral("Claude使用量API: 未実行"));
        QCoro::waitFor(settings.model.refresh());
        QVERIFY(settings.viewModel.apiStatusText().contains(QStringLiteral("トークン未検出")));

        const QList<CLIStatusRow> rows = settings.viewModel.cliRows();
        QCOMPARE(rows.size(), 3);
        const CLIStatusRow &claude = rows[1];
        QCOMPARE(claude.name, QStringLiteral("Claude Code"));
        QCOMPARE(claude.stateText, QStringLiteral("検出済み"));
        QCOMPARE(claude.detectedPath, settings.home.path(QStringLiteral(".local/bin/claude")));
        QCOMPARE(claude.dataText,
                 QStringLiteral("データ: ") + settings.home.path(QStringLiteral(".claude")));
        QCOMPARE(claude.integrationHint,
                 QStringLiteral("Claude CodeのstatusLineブリッジは設定済みです。"));
    }
};

QTEST_GUILESS_MAIN(SettingsViewModelTest)
#include "SettingsViewModelTest.moc"
