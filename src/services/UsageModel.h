#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageSnapshot.h"
#include "platform/Ports.h"
#include "services/CLIDetection.h"
#include "services/ClaudeUsageAPI.h"
#include "store/StorageLocations.h"
#include "update/AppUpdateInfo.h"

#include <QCoroTask>
#include <QObject>
#include <QPointer>

#include <optional>
#include <vector>

namespace tallyglass {

class AppUpdateChecker;

/// The state that people see, and the cycle that renews it. Main thread only; whatever takes time
/// runs in workers, which are given values and give values back.
///
/// It must outlive the refreshes and renewals that it has begun.
class UsageModel : public QObject
{
    Q_OBJECT

public:
    /// Shows what was stored last.
    UsageModel(Ports &ports, ClaudeUsageAPI &api, AppUpdateChecker &updates,
               QObject *parent = nullptr);

    /// Begins to refresh: at once, then every five minutes and whenever the machine wakes, as
    /// long as the model lives.
    void start();

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
    static QCoro::Task<> refreshAtStart(QPointer<UsageModel> model);
    static QCoro::Task<> refreshPeriodically(QPointer<UsageModel> model, Clock *clock);
    static QCoro::Task<> refreshAndRenew(QPointer<UsageModel> model);

    QCoro::Task<> refreshTokenIfDue();
    QCoro::Task<> publishSnapshot(UsageSnapshot snapshot);
    QCoro::Task<> saveSnapshot();

    template<typename Value>
    void publish(Value &field, Value value);

    Ports &m_ports;
    ClaudeUsageAPI &m_api;
    AppUpdateChecker &m_updates;
    StorageLocations m_locations;

    UsageSnapshot m_snapshot;
    std::vector<CLIInstallStatus> m_cliStatuses;
    std::optional<AppUpdateInfo> m_availableUpdate;
    std::vector<UsageHistorySample> m_history;
    ClaudeUsageAPIStatus m_claudeAPIStatus;
    bool m_isRefreshingToken = false;
    bool m_isRefreshing = false;

    std::optional<Instant> m_lastAutoTokenRefreshAttempt;
};

} // namespace tallyglass
