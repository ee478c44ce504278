#include "services/UsageModel.h"

#include "services/EndpointLimits.h"
#include "services/Settings.h"
#include "services/TakeSnapshot.h"
#include "services/UsageAlerts.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"
#include "update/AppUpdateChecker.h"

#include <QFileInfo>
#include <QTemporaryDir>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto autoRefreshInterval = 300s;
constexpr auto tokenRefreshLeadTime = 600s;
constexpr auto autoTokenRefreshRetryInterval = 1800s;
constexpr auto tokenRefreshDeadline = 90s;

// Longer than any home takes; only a disk that does not answer does.
constexpr auto longestCollection = 300s;
constexpr auto longestFileWork = 30s;

// A network comes back after the machine does.
constexpr auto untilNetworkIsBack = 10s;
constexpr auto untilEndpointIsAskedAgain = 60s;

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
                       Workers &workers, QObject *parent)
    : QObject(parent)
    , m_ports(ports)
    , m_api(api)
    , m_updates(updates)
    , m_locations(ports.host)
    , m_detection(workers)
    , m_collection(workers)
    , m_saving(workers)
    , m_recording(workers)
    , m_cliStatuses(detectAll(ports.host))
{
    const auto lastSnapshot = readSnapshot(m_locations);
    m_snapshot = lastSnapshot ? *lastSnapshot
                              : UsageSnapshot::empty(ports.clock->now(), ports.clock->zone());
}

void UsageModel::start()
{
    connect(m_ports.sleepWatch.get(), &SleepWatch::woke, this, [this] {
        m_refreshAfterWaking =
            m_ports.clock->callAfter(untilNetworkIsBack, [this] { refreshAfterWaking(); });
    });
    m_nextRefresh =
        m_ports.clock->callAfter(autoRefreshInterval, [this] { refreshPeriodically(); });
    refreshAtStart();
}

void UsageModel::end()
{
    m_hasEnded = true;
    m_nextRefresh.reset();
    m_refreshAfterWaking.reset();
    disconnect(m_ports.sleepWatch.get(), nullptr, this, nullptr);
}

QCoro::Task<> UsageModel::refreshAtStart()
{
    // For the widget, which may have lost its copy.
    co_await saveSnapshot();
    auto history = co_await m_recording.run(
        longestFileWork, [locations = m_locations] { return loadHistory(locations); });
    if (history)
        publish(m_history, std::move(*history));
    co_await refreshAndRenew();
}

QCoro::Task<> UsageModel::refreshPeriodically()
{
    co_await refreshAndRenew();
    if (!m_hasEnded)
        m_nextRefresh =
            m_ports.clock->callAfter(autoRefreshInterval, [this] { refreshPeriodically(); });
}

QCoro::Task<> UsageModel::refreshAfterWaking()
{
    co_await refreshAndRenew();
    if (!m_hasEnded && m_claudeAPIStatus == ClaudeUsageAPIStatus{apistatus::NetworkError{}})
        m_refreshAfterWaking =
            m_ports.clock->callAfter(untilEndpointIsAskedAgain, [this] { refreshAndRenew(); });
}

QCoro::Task<> UsageModel::refreshAndRenew()
{
    co_await refresh();
    co_await refreshTokenIfDue();
}

QCoro::Task<> UsageModel::refresh()
{
    // Tested here and set before the first wait, so that a second caller meanwhile sees it.
    if (!m_isRefreshing && !m_hasEnded)
        co_await runFlagged(&UsageModel::m_isRefreshing, &UsageModel::runRefresh);
}

/// Holds a published flag up while \a steps run, however they end.
QCoro::Task<> UsageModel::runFlagged(bool UsageModel::*flag, Steps steps)
{
    publish(this->*flag, true);
    try {
        co_await (this->*steps)();
    } catch (const std::exception &) {
        // Such as a lack of memory. The next time begins afresh.
    }
    publish(this->*flag, false);
}

QCoro::Task<> UsageModel::runRefresh()
{
    co_await recheckCLIs();

    const SnapshotJob job{m_ports.host, m_ports.clock->now(), m_ports.clock->zone(),
                          stored(*m_ports.defaults, settings::countsAnswersOnce)
                              ? Counting::EachAnswerOnce
                              : Counting::EveryRecord};
    auto snapshot =
        co_await m_collection.run(longestCollection, [job] { return runSnapshotJob(job); });
    if (snapshot)
        co_await publishSnapshot(std::move(*snapshot));
    if (m_hasEnded)
        co_return;

    const std::vector<RateLimitUsage> limits = co_await m_api.fetchLimits();
    publish(m_claudeAPIStatus, m_api.status());
    const UsageSnapshot merged = withEndpointLimits(m_snapshot, limits);
    if (merged != m_snapshot)
        co_await publishSnapshot(merged);

    auto history = co_await m_recording.run(
        longestFileWork, [snapshot = m_snapshot, job, locations = m_locations] {
            return recordHistory(snapshot, job.now, job.zone, locations);
        });
    if (m_hasEnded)
        co_return;
    if (history)
        publish(m_history, std::move(*history));
    raiseAlerts(m_snapshot.summary(UsageWindowKind::FiveHours, job.now, job.zone),
                *m_ports.defaults, *m_ports.notifier);

    const auto update = co_await m_updates.checkForUpdate();
    publish(m_availableUpdate, update);
}

QCoro::Task<> UsageModel::recheckCLIs()
{
    auto statuses = co_await m_detection.run(longestFileWork,
                                             [host = m_ports.host] { return detectAll(host); });
    if (statuses)
        publish(m_cliStatuses, std::move(*statuses));
}

QCoro::Task<> UsageModel::publishSnapshot(UsageSnapshot snapshot)
{
    publish(m_snapshot, std::move(snapshot));
    co_await saveSnapshot();
    if (!m_hasEnded && m_ports.widgets)
        m_ports.widgets->reloadAllTimelines();
}

/// In a worker: bringing a file safely to the disk may take longer than a frame.
QCoro::Task<> UsageModel::saveSnapshot()
{
    co_await m_saving.run(longestFileWork, [snapshot = m_snapshot, locations = m_locations] {
        writeSnapshot(snapshot, locations);
        return true;
    });
}

QCoro::Task<> UsageModel::refreshTokenIfDue()
{
    const Instant now = m_ports.clock->now();
    // An attempt that lies ahead was made before the clock was set back.
    const auto lastAttempt = m_lastAutoTokenRefreshAttempt;
    const bool hasJustTried =
        lastAttempt && *lastAttempt <= now && now - *lastAttempt < autoTokenRefreshRetryInterval;
    // Found by the refresh before: another look might be another question to the user.
    const auto &credentials = m_api.signIn().found();
    if (m_isRefreshingToken || hasJustTried || !credentials)
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
    if (m_isRefreshingToken || m_hasEnded || !claudeProgram())
        co_return;
    co_await runFlagged(&UsageModel::m_isRefreshingToken, &UsageModel::runTokenRefresh);

    // Whatever came of it: the endpoint's answer to the next refresh tells.
    m_api.signIn().forget();
    co_await refresh();
}

QCoro::Task<> UsageModel::runTokenRefresh()
{
    // Of its own, for the tool obeys settings that lie where it runs, and in the temporary folder
    // itself other users could have put some.
    const QTemporaryDir folder(m_ports.host.temporaryFolder + QStringLiteral("/tallyglass-XXXXXX"));
    const QString program = claudeProgram().value_or(QString());
    if (!folder.isValid() || program.isEmpty())
        co_return;

    // Any request makes the tool renew its token; this is the smallest to the smallest model.
    ProcessJob job{
        .program = program,
        .arguments = {QStringLiteral("-p"), QStringLiteral("ping"), QStringLiteral("--model"),
                      QStringLiteral("haiku")},
        .workingFolder = folder.path(),
        // What a tool needs, such as Node, lies beside it or where tools are looked for. A program
        // that the desktop has started is told of neither.
        .searchPath = QStringList{QFileInfo(program).path()} + searchPathDirectories(m_ports.host),
        .deadline = tokenRefreshDeadline,
    };
    co_await m_ports.processes->run(std::move(job));
}

std::optional<QString> UsageModel::claudeProgram() const
{
    const auto claude =
        std::ranges::find(m_cliStatuses, UsageProvider::Claude, &CLIInstallStatus::provider);
    return claude != m_cliStatuses.end() ? claude->detectedPath : std::nullopt;
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
