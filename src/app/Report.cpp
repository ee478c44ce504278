#include "app/Report.h"

#include "app/Home.h"
#include "app/Output.h"
#include "app/ReportTable.h"
#include "app/TerminalText.h"
#include "model/DisplayTexts.h"
#include "services/TakeSnapshot.h"
#include "store/SnapshotFile.h"

#include <QTimeZone>

#include <csignal>
#include <cstdio>
#include <future>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

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

/// While it lives, the signals that end the program wait.
class HeldSignals
{
public:
    HeldSignals()
    {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : {SIGHUP, SIGINT, SIGTERM})
            sigaddset(&held, number);
        pthread_sigmask(SIG_BLOCK, &held, &m_before);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    HeldSignals(const HeldSignals &) = delete;
    HeldSignals &operator=(const HeldSignals &) = delete;

private:
    sigset_t m_before{};
};

void showProgress(const CollectionProgress &progress)
{
    constexpr std::int64_t mebibyte = std::int64_t{1024} * 1024;
    const QString line = formatText("report.progress.format",
                                    {QString::number(progress.bytesRead / mebibyte),
                                     QString::number(progress.bytesFound / mebibyte)});
    std::fprintf(stderr, "\r%s", line.toUtf8().constData());
}

void clearProgress()
{
    std::fputs("\r\x1b[K", stderr);
}

/// Takes the snapshot in a thread of its own; one that is long in coming shows how far it is.
UsageSnapshot takeSnapshotShowingProgress(const QString &home, Instant now, const QTimeZone &zone)
{
    CollectionProgress progress;
    auto snapshot = std::async(std::launch::async, [&] {
        return takeSnapshot(Host{.homeFolder = home}, now, zone, progress);
    });
    if (isatty(STDERR_FILENO) && snapshot.wait_for(1s) == std::future_status::timeout) {
        do {
            showProgress(progress);
        } while (snapshot.wait_for(100ms) == std::future_status::timeout);
        clearProgress();
    }
    snapshot.wait();
    if (progress.bytesFound == 0)
        complain(formatText("report.noLogs.format", {home}));
    return snapshot.get();
}

/// Made-up logs are in a folder that must be gone before anything is printed: a pipe that nobody
/// reads ends the program at once.
UsageSnapshot takeSnapshotOfHome(bool isDemo, Instant now, const QTimeZone &zone)
{
    std::optional<HeldSignals> untilItIsGone;
    if (isDemo)
        untilItIsGone.emplace();
    const Home home(isDemo);
    return takeSnapshotShowingProgress(home.path(), now, zone);
}

} // namespace

int runReport(const command::Report &options, Instant now)
{
    QTimeZone zone = QTimeZone::systemTimeZone();
    if (!zone.isValid())
        zone = QTimeZone::utc();

    const UsageSnapshot snapshot = takeSnapshotOfHome(options.inDemoHome, now, zone);
    if (options.asJson)
        return print(printableJson(encodeSnapshot(snapshot)));
    std::vector<WindowUsageSummary> windows = snapshot.summaries;
    if (options.window)
        windows = {snapshot.summary(*options.window, now, zone)};
    return print(reportTable(windows, now, styleOfStandardOutput()).toUtf8());
}

} // namespace tallyglass
