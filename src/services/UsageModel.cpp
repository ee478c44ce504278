#include "services/UsageModel.h"

#include "services/ClaudeCredentials.h"
#include "services/EndpointLimits.h"
#include "services/Settings.h"
#include "services/TakeSnapshot.h"
#include "services/UsageAlerts.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"
#include "update/AppUpdateChecker.h"

#include <QCoroFuture>
#include <QtConcurrentRun>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto autoRefreshInterval = 300s;
constexpr auto tokenRefreshLeadTime = 600s;
constexpr auto autoTokenRefreshRetryInterval = 1800s;
constexpr auto tokenRefreshDeadline = 90s;

/// What a worker needs for a snapshot, by value.
struct SnapshotJob
{
    Host host;
    Instant now;
    QTimeZone zone;
    Counting counting;
};

UsageSnapshot runSnapshotJob(const SnapshotJob &job)
{
    CollectionProgress unseen;
    return takeSnapshot(job.host, job.now, job.zone, unseen, job.counting);
}

} // namespace

UsageModel::UsageModel(Ports &ports, ClaudeUsageAPI &api, AppUpdateChecker &updates,
                       QObject *parent)
    : QObject(parent)
    , m_ports(ports)
    , m_api(api)
    , m_updates(updates)
    , m_locations(ports.host)
    , m_cliStatuses(detectAll(ports.host))
{
    const auto lastSnapshot = readSnapshot(m_locations);
    m_snapshot = lastSnapshot ? *lastSnapshot
                              : UsageSnapshot::empty(ports.clock->now(), ports.clock->zone());
}

void UsageModel::start()
{
    refreshAtStart(this);
    refreshPeriodically(this, m_ports.clock.get());
    connect(m_ports.sleepWatch.get(), &SleepWatch::woke, this, [this] { refreshAndRenew(this); });
}

// Static and weak, as are the two below: none may keep a model alive, nor outlive one that a
// test drops.
QCoro::Task<> UsageModel::refreshAtStart(QPointer<UsageModel> model)
{
    // For the widget, which may have lost its copy.
    co_await model->saveSnapshot();
    if (!model)
        co_return;
    model->publish(model->m_history, co_await QtConcurrent::run(loadHistory, model->m_locations));
    co_await refreshAndRenew(model);
}

QCoro::Task<> UsageModel::refreshPeriodically(QPointer<UsageModel> model, Clock *clock)
{
    while (model) {
        co_await clock->sleepFor(autoRefreshInterval);
        co_await refreshAndRenew(model);
    }
}

QCoro::Task<> UsageModel::refreshAndRenew(QPointer<UsageModel> model)
{
    if (model)
        co_await model->refresh();
    if (model)
        co_await model->refreshTokenIfDue();
}

QCoro::Task<> UsageModel::refresh()
{
    // Tested and set before the first wait, so that a second caller meanwhile sees it.
    if (m_isRefreshing)
        co_return;
    publish(m_isRefreshing, true);

    co_await recheckCLIs();

    const SnapshotJob job{m_ports.host, m_ports.clock->now(), m_ports.clock->zone(),
                          stored(*m_ports.defaults, settings::countsAnswersOnce)
                              ? Counting::EachAnswerOnce
                              : Counting::EveryRecord};
    co_await publishSnapshot(co_await QtConcurrent::run(runSnapshotJob, job));

    const std::vector<RateLimitUsage> limits = co_await m_api.fetchLimits();
    publish(m_claudeAPIStatus, m_api.status());
    const UsageSnapshot merged = withEndpointLimits(m_snapshot, limits);
    if (merged != m_snapshot)
        co_await publishSnapshot(merged);

    publish(m_history,
            co_await QtConcurrent::run(recordHistory, m_snapshot, job.now, job.zone, m_locations));
    raiseAlerts(m_snapshot.summary(UsageWindowKind::FiveHours, job.now, job.zone),
                *m_ports.defaults, *m_ports.notifier);
    publish(m_availableUpdate, co_await m_updates.checkForUpdate());

    publish(m_isRefreshing, false);
}

QCoro::Task<> UsageModel::recheckCLIs()
{
    publish(m_cliStatuses, co_await QtConcurrent::run(detectAll, m_ports.host));
}

QCoro::Task<> UsageModel::publishSnapshot(UsageSnapshot snapshot)
{
    publish(m_snapshot, std::move(snapshot));
    co_await saveSnapshot();
    if (m_ports.widgets)
        m_ports.widgets->reloadAllTimelines();
}

/// In a worker: bringing a file safely to the disk may take longer than a frame.
QCoro::Task<> UsageModel::saveSnapshot()
{
    co_await QtConcurrent::run(writeSnapshot, m_snapshot, m_locations);
}

QCoro::Task<> UsageModel::refreshTokenIfDue()
{
    const Instant now = m_ports.clock->now();
    // An attempt that lies ahead was made before the clock was set back.
    const auto lastAttempt = m_lastAutoTokenRefreshAttempt;
    const bool hasJustTried =
        lastAttempt && *lastAttempt <= now && now - *lastAttempt < autoTokenRefreshRetryInterval;
    if (m_isRefreshingToken || hasJustTried)
        co_return;

    const auto credentials = co_await QtConcurrent::run([&ports = m_ports, now] {
        return findClaudeCredentials(ports.host, ports.keychain.get(), now);
    });
    if (!credentials)
        co_return;
    const bool expiresSoon =
        credentials->expiryDate && *credentials->expiryDate <= now + tokenRefreshLeadTime;
    if (!expiresSoon && m_claudeAPIStatus != ClaudeUsageAPIStatus{apistatus::TokenExpired{}})
        co_return;
    m_lastAutoTokenRefreshAttempt = now;
    co_await refreshClaudeToken();
}

QCoro::Task<> UsageModel::refreshClaudeToken()
{
    if (m_isRefreshingToken)
        co_return;
    const auto claude =
        std::ranges::find(m_cliStatuses, UsageProvider::Claude, &CLIInstallStatus::provider);
    const auto program = claude != m_cliStatuses.end() ? claude->detectedPath : std::nullopt;
    if (!program)
        co_return;

    // Any request makes the tool renew its token; this is the smallest to the smallest model.
    ProcessJob job{
        .program = *program,
        .arguments = {QStringLiteral("-p"), QStringLiteral("ping"), QStringLiteral("--model"),
                      QStringLiteral("haiku")},
        .workingFolder = m_ports.host.temporaryFolder,
        .deadline = tokenRefreshDeadline,
    };
    publish(m_isRefreshingToken, true);
    co_await m_ports.processes->run(std::move(job));

    // Whatever came of it: the endpoint's answer to the next refresh tells.
    publish(m_isRefreshingToken, false);
    co_await refresh();
}

template<typename Value>
void UsageModel::publish(Value &field, Value value)
{
    if (field == value)
        return;
    field = std::move(value);
    Q_EMIT changed();
}

} // namespace tallyglass
