#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageSnapshot.h"
#include "platform/Errand.h"
#include "platform/Ports.h"
#include "services/CLIDetection.h"
#include "services/ClaudeUsageAPI.h"
#include "store/StorageLocations.h"
#include "update/AppUpdateInfo.h"

#include <QCoroTask>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace tallyglass {

class AppUpdateChecker;

/// The state that people see, and the cycle that renews it. Main thread only; whatever takes time
/// runs in workers, which are given values and give values back.
///
/// No step of a refresh is waited for without limit, and none that fails stops the others: what it
/// would have brought stays as it was. After end() whoever waits in the model only has to go on
/// once more before the model may go.
class UsageModel : public QObject
{
    Q_OBJECT

public:
    /// Shows what was stored last.
    UsageModel(Ports &ports, ClaudeUsageAPI &api, AppUpdateChecker &updates, Workers &workers,
               QObject *parent = nullptr);

    /// Begins to refresh: at once, then every five minutes and whenever the machine wakes.
    void start();
    /// Begins nothing any more. What waits returns as soon as it goes on.
    void end();

    /// One refresh. Returns at once while another runs.
    QCoro::Task<> refresh();
    /// Has the Claude tool renew its token by asking it something small, and refreshes.
    QCoro::Task<> refreshClaudeToken();
    /// Looks for the tools again.
    QCoro::Task<> recheckCLIs();

    const UsageSnapshot &snapshot() const { return m_snapshot; }
    const std::vector<CLIInstallStatus> &cliStatuses() const { return m_cliStatuses; }
    const std::optional<AppUpdateInfo> &availableUpdate() const { return m_availableUpdate; }
    const std::vector<UsageHistorySample> &history() const { return m_history; }
    const ClaudeUsageAPIStatus &claudeAPIStatus() const { return m_claudeAPIStatus; }
    bool isRefreshingToken() const { return m_isRefreshingToken; }
    bool isRefreshing() const { return m_isRefreshing; }

Q_SIGNALS:
    /// One of the published fields has another value.
    void changed();

private:
    QCoro::Task<> refreshAtStart();
    QCoro::Task<> refreshPeriodically();
    QCoro::Task<> refreshAfterWaking();
    QCoro::Task<> refreshAndRenew();

    using Steps = QCoro::Task<> (UsageModel::*)();
    QCoro::Task<> runFlagged(bool UsageModel::*flag, Steps steps);
    QCoro::Task<> runRefresh();
    QCoro::Task<> runTokenRefresh();
    QCoro::Task<> refreshTokenIfDue();
    QCoro::Task<> publishSnapshot(UsageSnapshot snapshot);
    QCoro::Task<> saveSnapshot();
    std::optional<QString> claudeProgram() const;

    template<typename Value>
    void publish(Value &field, Value value);

    Ports &m_ports;
    ClaudeUsageAPI &m_api;
    AppUpdateChecker &m_updates;
    StorageLocations m_locations;
    Errand<std::vector<CLIInstallStatus>> m_detection;
    Errand<UsageSnapshot> m_collection;
    Errand<bool> m_saving;
    Errand<std::vector<UsageHistorySample>> m_recording;

    UsageSnapshot m_snapshot;
    std::vector<CLIInstallStatus> m_cliStatuses;
    std::optional<AppUpdateInfo> m_availableUpdate;
    std::vector<UsageHistorySample> m_history;
    ClaudeUsageAPIStatus m_claudeAPIStatus;
    bool m_isRefreshingToken = false;
    bool m_isRefreshing = false;

    bool m_hasEnded = false;
    std::unique_ptr<Timer> m_nextRefresh;
    std::unique_ptr<Timer> m_refreshAfterWaking;
    std::optional<Instant> m_lastAutoTokenRefreshAttempt;
};

} // namespace tallyglass
