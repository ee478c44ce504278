#include "platform/Workers.h"

#include "platform/Wakeup.h"

#include <QFutureWatcher>

namespace tallyglass {

using namespace std::chrono_literals;

Workers::Workers(Clock &clock)
    : m_clock(clock)
{
}

Workers::~Workers()
{
    letGo();
    waitForAll(0s);
    for (Worker &worker : m_workers)
        worker.thread.detach();
}

QCoro::Task<> Workers::ended(QFuture<void> future, std::chrono::milliseconds patience)
{
    if (m_hasLetGo || future.isFinished())
        co_return;
    Wakeup wakeup;
    const auto wake = [&wakeup] { wakeup.happen(); };
    QFutureWatcher<void> watcher;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, wake);
    watcher.setFuture(future);
    const auto timer = m_clock.callAfter(patience, wake);

    m_waiting.insert(&wakeup);
    co_await wakeup;
    m_waiting.remove(&wakeup);
}

void Workers::letGo()
{
    m_hasLetGo = true;
    while (!m_waiting.isEmpty())
        (*m_waiting.begin())->happen();
}

bool Workers::waitForAll(std::chrono::milliseconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    m_workers.remove_if([deadline](Worker &worker) {
        if (worker.end.wait_until(deadline) != std::future_status::ready)
            return false;
        worker.thread.join();
        return true;
    });
    return m_workers.empty();
}

bool Workers::launch(std::function<void()> work)
{
    waitForAll(0s); // those that have ended
    if (m_hasLetGo)
        return false;
    try {
        std::packaged_task<void()> task(std::move(work));
        // A place for the thread first: one that runs and has no place would end the program.
        Worker &worker = m_workers.emplace_back();
        worker.end = task.get_future();
        worker.thread = std::thread(std::move(task));
    } catch (const std::exception &) {
        // The system has no thread left for this user, or no memory.
        m_workers.remove_if([](const Worker &worker) { return !worker.thread.joinable(); });
        return false;
    }
    return true;
}

} // namespace tallyglass
