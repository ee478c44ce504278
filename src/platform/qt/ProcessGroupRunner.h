#pragma once

#include "platform/ProcessRunner.h"

#include <QSet>

#include <functional>

namespace tallyglass {

class ProcessGroup;

/// Runs programs with the null device for input and output, so that none waits on us.
class ProcessGroupRunner final : public ProcessRunner
{
public:
    /// \a prepareChild runs in the child just before the program takes its place: it may only do
    /// what is allowed between fork and exec.
    explicit ProcessGroupRunner(std::function<void()> prepareChild = {});
    ProcessGroupRunner(const ProcessGroupRunner &) = delete;
    ProcessGroupRunner &operator=(const ProcessGroupRunner &) = delete;
    /// Kills what still runs; those who wait for it go on with false, inside this call.
    ~ProcessGroupRunner() override;

    QCoro::Task<bool> run(ProcessJob job) override;

private:
    std::function<void()> m_prepareChild;
    QSet<ProcessGroup *> m_groups;
};

} // namespace tallyglass
