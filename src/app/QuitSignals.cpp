#include "app/QuitSignals.h"

#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tallyglass {

namespace {

int writeEnd = -1;

// Hardly anything may be called here; a byte into a pipe wakes the event loop.
void noteSignal(int)
{
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
    for (const int number : {SIGTERM, SIGINT, SIGHUP})
        std::signal(number, noteSignal);
}

} // namespace tallyglass
