#include "app/Terminal.h"

#include "app/Output.h"
#include "model/DisplayTexts.h"

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tallyglass {

using namespace std::chrono_literals;

TableStyle styleOfStandardOutput()
{
    const bool isTerminal = isatty(STDOUT_FILENO);
    const QByteArray terminal = qgetenv("TERM");
    TableStyle style{.hasColours = isTerminal && qEnvironmentVariableIsEmpty("NO_COLOR")
                         && !terminal.isEmpty() && terminal != "dumb"};
    winsize size{};
    if (const int columns = qEnvironmentVariableIntValue("COLUMNS"); columns > 0)
        style.width = columns;
    else if (isTerminal && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        style.width = size.ws_col;
    return style;
}

QTimeZone systemZone()
{
    const QTimeZone zone = QTimeZone::systemTimeZone();
    return zone.isValid() ? zone : QTimeZone::utc();
}

HeldSignals::HeldSignals()
{
    sigset_t held;
    sigemptyset(&held);
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
        sigaddset(&held, number);
    pthread_sigmask(SIG_BLOCK, &held, &m_before);
}

HeldSignals::~HeldSignals()
{
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void showProgress(const CollectionProgress &progress, const QString &home,
                  const std::function<bool(std::chrono::milliseconds)> &isStillRunning)
{
    if (isatty(STDERR_FILENO) && isStillRunning(1s)) {
        constexpr std::int64_t mebibyte = std::int64_t{1024} * 1024;
        do {
            const QString line = formatText("report.progress.format",
                                            {QString::number(progress.bytesRead / mebibyte),
                                             QString::number(progress.bytesFound / mebibyte)});
            std::fprintf(stderr, "\r%s", line.toUtf8().constData());
        } while (isStillRunning(100ms));
        std::fputs("\r\x1b[K", stderr);
    }
    while (isStillRunning(1h)) { }
    if (progress.bytesFound == 0)
        complain(formatText("report.noLogs.format", {home}));
}

} // namespace tallyglass
