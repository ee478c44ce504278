#include "app/QuitSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

namespace tallyglass {

namespace {

int writeEnd = -1;

constexpr itimerval timeToEnd{.it_interval = {}, .it_value = {.tv_sec = 1, .tv_usec = 500'000}};

void endAtOnce(int)
{
    _exit(0);
}

// Hardly anything may be called here; a byte into a pipe wakes the event loop. Setting the timer is
// one call of the system, as alarm() is, which counts in whole seconds.
void noteSignal(int)
{
    QuitSignals::limitEnding();
    const char byte = 1;
    [[maybe_unused]] const auto ignored = write(writeEnd, &byte, 1);
}

} // namespace

QuitSignals::QuitSignals(QObject *parent)
    : QObject(parent)
{
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        return;
    for (const int end : ends)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(ends[1], F_SETFL, O_NONBLOCK);
    writeEnd = ends[1];
    auto *notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &QuitSignals::received);
    std::signal(SIGALRM, endAtOnce);
    std::signal(SIGTERM, noteSignal);
    for (const int number : {SIGINT, SIGHUP}) {
        if (std::signal(number, noteSignal) == SIG_IGN)
            std::signal(number, SIG_IGN);
    }
}

void QuitSignals::limitEnding()
{
    static volatile std::sig_atomic_t isSet = 0;
    if (isSet == 0)
        setitimer(ITIMER_REAL, &timeToEnd, nullptr);
    isSet = 1;
}

} // namespace tallyglass
