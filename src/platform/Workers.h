#pragma once

#include "platform/Clock.h"

#include <QCoroTask>
#include <QFuture>
#include <QPromise>
#include <QSet>

#include <future>
#include <list>
#include <thread>

namespace tallyglass {

class Wakeup;

/// Threads for what takes long, or for ever: a large home, a disk that does not answer, a question
/// that the user leaves open. For the main thread only.
///
/// Work owns all that it uses, so a thread that hangs harms nobody: it is left behind.
class Workers
{
public:
    explicit Workers(Clock &clock);
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;
    ~Workers();

    /// Runs \a work in a thread of its own. The future ends without a result when the work throws,
    /// when there is no thread for it, and after letGo().
    template<typename Result>
    QFuture<Result> start(std::function<Result()> work);

    /// Goes on when \a future has ended, after \a patience, or inside letGo().
    QCoro::Task<> ended(QFuture<void> future, std::chrono::milliseconds patience);

    /// Lets everybody go on who waits, inside the call. Nothing is started any more.
    void letGo();
    /// Waits for the threads. False when one still runs after \a patience.
    bool waitForAll(std::chrono::milliseconds patience);

private:
    struct Worker
    {
        std::thread thread;
        std::future<void> end;
    };

    bool launch(std::function<void()> work);

    Clock &m_clock;
    bool m_hasLetGo = false;
    QSet<Wakeup *> m_waiting;
    std::list<Worker> m_workers;
};

template<typename Result>
QFuture<Result> Workers::start(std::function<Result()> work)
{
    const auto promise = std::make_shared<QPromise<Result>>();
    promise->start();
    const auto run = [promise, work = std::move(work)] {
        try {
            promise->addResult(work());
        } catch (const std::exception &) {
            // Such as a lack of memory: there is no result then.
        }
        promise->finish();
    };
    if (!launch(run))
        promise->finish();
    return promise->future();
}

} // namespace tallyglass
