#pragma once

#include "ui/SettingsRows.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

class AppUpdater;
class UsageModel;
struct Ports;

/// What the settings window shows and does. Every text is final.
class SettingsViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(QList<tallyglass::CLIStatusRow> cliRows READ cliRows NOTIFY cliRowsChanged FINAL)
    Q_PROPERTY(QString apiStatusText READ apiStatusText NOTIFY apiStatusTextChanged FINAL)
    Q_PROPERTY(
        bool alertsEnabled READ alertsEnabled WRITE setAlertsEnabled NOTIFY alertsChanged FINAL)
    Q_PROPERTY(double alertThreshold READ alertThreshold WRITE setAlertThreshold NOTIFY
                   alertsChanged FINAL)
    Q_PROPERTY(bool countsAnswersOnce READ countsAnswersOnce WRITE setCountsAnswersOnce NOTIFY
                   countingChanged FINAL)
    Q_PROPERTY(QString thresholdText READ thresholdText NOTIFY alertsChanged FINAL)
    Q_PROPERTY(double lowestThreshold READ lowestThreshold CONSTANT FINAL)
    Q_PROPERTY(double highestThreshold READ highestThreshold CONSTANT FINAL)
    Q_PROPERTY(double thresholdStep READ thresholdStep CONSTANT FINAL)
    Q_PROPERTY(QStringList budgetLabels READ budgetLabels CONSTANT FINAL)
    Q_PROPERTY(QList<tallyglass::BudgetLine> budgetLines READ budgetLines CONSTANT FINAL)
    Q_PROPERTY(bool isUpdaterConfigured READ isUpdaterConfigured CONSTANT FINAL)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY updaterChanged FINAL)
    Q_PROPERTY(
        bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY loginItemChanged FINAL)
    Q_PROPERTY(QString launchAtLoginError READ launchAtLoginError NOTIFY loginItemChanged FINAL)
    Q_PROPERTY(QString dataFolderText READ dataFolderText CONSTANT FINAL)

public:
    SettingsViewModel(UsageModel &model, AppUpdater &updater, Ports &ports,
                      QObject *parent = nullptr);

    const QList<CLIStatusRow> &cliRows() const { return m_cliRows; }
    const QString &apiStatusText() const { return m_apiStatusText; }
    Q_INVOKABLE void recheckCLIs();

    bool alertsEnabled() const;
    /// Turning alerts on asks for the permission to show them.
    void setAlertsEnabled(bool enabled);
    /// The stored fraction, which may lie beyond what the slider offers.
    double alertThreshold() const;
    /// Takes the nearest step within the slider's range.
    void setAlertThreshold(double threshold);
    QString thresholdText() const;
    double lowestThreshold() const { return 0.5; }
    double highestThreshold() const { return 0.95; }
    double thresholdStep() const { return 0.05; }

    QStringList budgetLabels() const;
    const QList<BudgetLine> &budgetLines() const { return m_budgetLines; }

    bool isUpdaterConfigured() const;
    bool canCheckForUpdates() const;
    Q_INVOKABLE void checkForUpdates();
    Q_INVOKABLE void openSite();

    bool countsAnswersOnce() const;
    /// Counts again at once.
    void setCountsAnswersOnce(bool once);

    bool launchAtLogin() const;
    void setLaunchAtLogin(bool enabled);
    /// The system's own words about the last attempt when it failed, else what the user still has
    /// to do; empty when there is neither.
    QString launchAtLoginError() const;

    QString dataFolderText() const;

    /// Reads again what others may have changed while the window was closed.
    void reload();

Q_SIGNALS:
    void cliRowsChanged();
    void apiStatusTextChanged();
    void alertsChanged();
    void countingChanged();
    void updaterChanged();
    void loginItemChanged();

private:
    void readModel();

    UsageModel &m_model;
    AppUpdater &m_updater;
    Ports &m_ports;
    QList<CLIStatusRow> m_cliRows;
    QString m_apiStatusText;
    QList<BudgetLine> m_budgetLines;
    QString m_launchAtLoginError;
};

} // namespace tallyglass
