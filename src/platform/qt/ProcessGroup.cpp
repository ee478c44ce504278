#include "platform/qt/ProcessGroup.h"

#include <csignal>
#include <unistd.h>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

/// What a program gets to tidy up after it has been asked to end.
constexpr auto patience = 1s;

} // namespace

ProcessGroup::ProcessGroup(const ProcessJob &job, const std::function<void()> &prepareChild)
{
    m_leader.setProgram(job.program);
    m_leader.setArguments(job.arguments);
    m_leader.setWorkingDirectory(job.workingFolder);
    if (!job.searchPath.isEmpty()) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"), job.searchPath.join(u':'));
        m_leader.setProcessEnvironment(environment);
    }
    m_leader.setStandardInputFile(QProcess::nullDevice());
    m_leader.setStandardOutputFile(QProcess::nullDevice());
    m_leader.setStandardErrorFile(QProcess::nullDevice());
    m_leader.setChildProcessModifier([prepareChild] {
        setpgid(0, 0);
        if (prepareChild)
            prepareChild();
    });
    QObject::connect(&m_leader, &QProcess::finished, &m_timer, [this] { killGroup(); });
    // Queued: the coroutine that waits destroys this object, which the process must not notice.
    QObject::connect(
        &m_leader, &QProcess::finished, &m_timer, [this] { ended.happen(); }, Qt::QueuedConnection);
    QObject::connect(
        &m_leader, &QProcess::errorOccurred, &m_timer,
        [this](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                ended.happen();
        },
        Qt::QueuedConnection);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { askToEnd(); });

    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    m_timer.start(job.deadline);
    m_leader.start();
    m_id = static_cast<pid_t>(m_leader.processId());
    // The child does the same. Whoever comes first, the group exists before anybody signals it.
    if (m_id > 0)
        setpgid(m_id, m_id);
}

void ProcessGroup::abandon()
{
    killGroup();
    m_leader.waitForFinished();
    ended.happen();
}

bool ProcessGroup::hasSucceeded() const
{
    return m_isInTime && m_leader.error() != QProcess::FailedToStart
        && m_leader.exitStatus() == QProcess::NormalExit && m_leader.exitCode() == 0;
}

void ProcessGroup::askToEnd()
{
    if (!m_isInTime)
        return killGroup();
    m_isInTime = false;
    m_timer.start(patience);
    if (m_id > 0)
        kill(-m_id, SIGTERM);
}

void ProcessGroup::killGroup()
{
    m_timer.stop();
    // Only once: after that the number may belong to somebody else.
    if (const pid_t id = std::exchange(m_id, 0); id > 0)
        kill(-id, SIGKILL);
}

} // namespace tallyglass
