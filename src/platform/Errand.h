#pragma once

#include "platform/Workers.h"

#include <optional>

namespace tallyglass {

/// One kind of work for which its owner waits, but not for ever. There is never more than one of a
/// kind under way, so what hangs costs one thread.
template<typename Result>
class Errand
{
public:
    explicit Errand(Workers &workers)
        : m_workers(workers)
    {
    }

    /// What \a work gives. Nothing when it takes longer than \a patience, throws, or finds no
    /// thread, and when the workers have let go.
    ///
    /// What took too long is not begun again: the next call waits for that, and has its result.
    QCoro::Task<std::optional<Result>> run(std::chrono::milliseconds patience,
                                           std::function<Result()> work)
    {
        if (!m_underWay)
            m_underWay = m_workers.start(std::move(work));
        co_await m_workers.ended(QFuture<void>(*m_underWay), patience);

        // Another caller may have taken the result meanwhile.
        if (!m_underWay || !m_underWay->isFinished())
            co_return std::nullopt;
        QFuture<Result> ended = *std::exchange(m_underWay, std::nullopt);
        if (ended.resultCount() == 0)
            co_return std::nullopt;
        co_return ended.takeResult();
    }

private:
    Workers &m_workers;
    std::optional<QFuture<Result>> m_underWay;
};

} // namespace tallyglass
