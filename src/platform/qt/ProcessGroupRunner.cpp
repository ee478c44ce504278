#include "platform/qt/ProcessGroupRunner.h"

#include "platform/qt/ProcessGroup.h"

namespace tallyglass {

ProcessGroupRunner::ProcessGroupRunner(std::function<void()> prepareChild)
    : m_prepareChild(std::move(prepareChild))
{
}

ProcessGroupRunner::~ProcessGroupRunner()
{
    while (!m_groups.isEmpty())
        (*m_groups.begin())->abandon();
}

QCoro::Task<bool> ProcessGroupRunner::run(ProcessJob job)
{
    ProcessGroup group(job, m_prepareChild);
    m_groups.insert(&group);
    co_await group.ended;
    m_groups.remove(&group);
    co_return group.hasSucceeded();
}

} // namespace tallyglass
