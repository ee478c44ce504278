#pragma once

#include <QCoroTask>
#include <QString>
#include <QStringList>

#include <chrono>

namespace tallyglass {

struct ProcessJob
{
    QString program; ///< full path
    QStringList arguments;
    QString workingFolder;
    QStringList searchPath; ///< the folders of its PATH; when there are none, ours
    std::chrono::milliseconds deadline; ///< from launch; whatever runs then is terminated

    bool operator==(const ProcessJob &) const = default;
};

class ProcessRunner
{
public:
    virtual ~ProcessRunner();

    /// Runs a program to its end, in a process group of its own that is gone afterwards, and as
    /// well when the runner is destroyed. Its output is thrown away. True when it exited with
    /// status 0 within its deadline.
    virtual QCoro::Task<bool> run(ProcessJob job) = 0;
};

} // namespace tallyglass
