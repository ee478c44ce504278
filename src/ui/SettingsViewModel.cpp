#include "ui/SettingsViewModel.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "services/Settings.h"
#include "services/UsageModel.h"
#include "update/AppUpdater.h"

#include <QDesktopServices>
#include <QUrl>

#include <algorithm>
#include <cmath>

namespace tallyglass {

namespace {

CLIStatusRow rowOf(const CLIInstallStatus &status)
{
    CLIStatusRow row;
    row.name = displayName(status.provider);
    row.executableName = status.executableName;
    row.isDetected = status.detectedPath.has_value();
    row.stateText =
        displayText(row.isDetected ? TextKey("common.detected") : TextKey("common.notDetected"));
    row.detectedPath = status.detectedPath.value_or(QString());
    row.installHint = row.isDetected ? QString() : status.installHint;
    row.dataText = formatText("settings.data.format", {status.dataPath});
    row.integrationHint = status.integrationHint.value_or(QString());
    return row;
}

} // namespace

SettingsViewModel::SettingsViewModel(UsageModel &model, AppUpdater &updater, Ports &ports,
                                     QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_updater(updater)
    , m_ports(ports)
{
    const StorageLocations locations(ports.host);
    for (const UsageProvider provider : allProviders) {
        BudgetLine line;
        line.name = shortName(provider);
        line.fiveHours = new BudgetField(locations, provider, UsageWindowKind::FiveHours, this);
        line.week = new BudgetField(locations, provider, UsageWindowKind::Week, this);
        m_budgetLines += line;
    }
    connect(&model, &UsageModel::changed, this, &SettingsViewModel::readModel);
    connect(&updater, &AppUpdater::canCheckForUpdatesChanged, this,
            &SettingsViewModel::updaterChanged);
    readModel();
}

void SettingsViewModel::readModel()
{
    QList<CLIStatusRow> rows;
    std::ranges::transform(m_model.cliStatuses(), std::back_inserter(rows), rowOf);
    if (rows != m_cliRows) {
        m_cliRows = rows;
        Q_EMIT cliRowsChanged();
    }
    const QString status = statusText(m_model.claudeAPIStatus(), m_ports.clock->zone());
    if (status != m_apiStatusText) {
        m_apiStatusText = status;
        Q_EMIT apiStatusTextChanged();
    }
}

void SettingsViewModel::recheckCLIs()
{
    m_model.recheckCLIs();
}

bool SettingsViewModel::alertsEnabled() const
{
    return stored(*m_ports.defaults, settings::alertsEnabled);
}

void SettingsViewModel::setAlertsEnabled(bool enabled)
{
    if (enabled == alertsEnabled())
        return;
    store(*m_ports.defaults, settings::alertsEnabled, enabled);
    if (enabled)
        m_ports.notifier->requestPermission();
    Q_EMIT alertsChanged();
}

double SettingsViewModel::alertThreshold() const
{
    return stored(*m_ports.defaults, settings::alertThreshold);
}

void SettingsViewModel::setAlertThreshold(double threshold)
{
    // Divided, not multiplied by the step: 16 / 20 is 0.8, and 16 * 0.05 is a little more.
    constexpr double stepsInOne = 20;
    const double nearest = std::round(threshold * stepsInOne) / stepsInOne;
    const double taken = std::clamp(nearest, lowestThreshold(), highestThreshold());
    if (taken == alertThreshold())
        return;
    store(*m_ports.defaults, settings::alertThreshold, taken);
    Q_EMIT alertsChanged();
}

QString SettingsViewModel::thresholdText() const
{
    return formatText("alerts.threshold.format", {formatPercent(alertThreshold())});
}

QStringList SettingsViewModel::budgetLabels() const
{
    return {shortLabel(UsageWindowKind::FiveHours), shortLabel(UsageWindowKind::Week)};
}

bool SettingsViewModel::isUpdaterConfigured() const
{
    return m_updater.isConfigured();
}

bool SettingsViewModel::canCheckForUpdates() const
{
    return m_updater.canCheckForUpdates();
}

void SettingsViewModel::checkForUpdates()
{
    m_updater.checkForUpdates();
}

void SettingsViewModel::openSite()
{
    QDesktopServices::openUrl(QUrl(QStringLiteral(TALLYGLASS_SITE)));
}

bool SettingsViewModel::countsAnswersOnce() const
{
    return stored(*m_ports.defaults, settings::countsAnswersOnce);
}

void SettingsViewModel::setCountsAnswersOnce(bool once)
{
    if (once == countsAnswersOnce())
        return;
    store(*m_ports.defaults, settings::countsAnswersOnce, once);
    m_model.refresh();
    Q_EMIT countingChanged();
}

bool SettingsViewModel::launchAtLogin() const
{
    return m_ports.loginItem->isEnabled();
}

void SettingsViewModel::setLaunchAtLogin(bool enabled)
{
    m_launchAtLoginError = m_ports.loginItem->setEnabled(enabled).value_or(QString());
    Q_EMIT loginItemChanged(); // also after a failure: the switch goes back to what holds
}

QString SettingsViewModel::launchAtLoginError() const
{
    return m_launchAtLoginError.isEmpty() ? m_ports.loginItem->pendingStep().value_or(QString())
                                          : m_launchAtLoginError;
}

QString SettingsViewModel::dataFolderText() const
{
    return formatText("settings.data.format",
                      {StorageLocations(m_ports.host).applicationSupportFolder()});
}

void SettingsViewModel::reload()
{
    for (const BudgetLine &line : m_budgetLines) {
        line.fiveHours->reload();
        line.week->reload();
    }
    m_launchAtLoginError.clear();
    Q_EMIT loginItemChanged();
}

} // namespace tallyglass
