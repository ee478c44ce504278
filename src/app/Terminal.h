#pragma once

#include "app/Home.h"
#include "collect/LogCollector.h"

#include <QTimeZone>

#include <csignal>
#include <functional>
#include <future>
#include <limits>
#include <optional>

namespace tallyglass {

/// How a table may look; the default is for files and pipes.
struct TableStyle
{
    bool hasColours = false;
    int width = std::numeric_limits<int>::max(); ///< columns of the terminal, which lines keep to
};

TableStyle styleOfStandardOutput();

/// The user's time zone; UTC where the system knows none.
QTimeZone systemZone();

/// While it lives, the signals that end the program wait.
class HeldSignals
{
public:
    HeldSignals();
    ~HeldSignals();
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

private:
    sigset_t m_before{};
};

/// Shows on a terminal how far \a progress is, as long as \a isStillRunning, which waits for the
/// time that it is given. Says at the end if no logs were found below \a home.
void showProgress(const CollectionProgress &progress, const QString &home,
                  const std::function<bool(std::chrono::milliseconds)> &isStillRunning);

/// Runs \a collect(host, progress) in a thread of its own; one that is long in coming shows how far
/// it is.
///
/// Made-up logs are in a folder that is gone before anything is printed: a pipe that nobody reads
/// ends the program at once.
template<typename Collect>
auto collectFromHome(bool isDemo, Collect collect)
{
    std::optional<HeldSignals> untilItIsGone;
    if (isDemo)
        untilItIsGone.emplace();
    const Home home(isDemo);
    const Host host{.homeFolder = home.path(), .movedHomes = home.movedHomes()};
    CollectionProgress progress;
    auto result = std::async(std::launch::async, [&] { return collect(host, progress); });
    showProgress(progress, host.homeFolder, [&](std::chrono::milliseconds time) {
        return result.wait_for(time) == std::future_status::timeout;
    });
    return result.get();
}

} // namespace tallyglass
