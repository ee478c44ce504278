#include "app/Report.h"

#include "app/ReportTable.h"
#include "app/TerminalText.h"
#include "model/DisplayTexts.h"
#include "services/TakeSnapshot.h"
#include "store/SnapshotFile.h"

#include <QTimeZone>

#include <cstdio>
#include <future>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

TableStyle styleOfStandardOutput()
{
    if (!isatty(STDOUT_FILENO))
        return {};
    TableStyle style{.hasColours = qEnvironmentVariableIsEmpty("NO_COLOR")
                         && qEnvironmentVariable("TERM") != QLatin1String("dumb")};
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        style.width = size.ws_col;
    return style;
}

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
UsageSnapshot takeSnapshotShowingProgress(const Host &host, Instant now, const QTimeZone &zone)
{
    CollectionProgress progress;
    auto snapshot =
        std::async(std::launch::async, [&] { return takeSnapshot(host, now, zone, progress); });
    if (isatty(STDERR_FILENO) && snapshot.wait_for(1s) == std::future_status::timeout) {
        do {
            showProgress(progress);
        } while (snapshot.wait_for(100ms) == std::future_status::timeout);
        clearProgress();
    }
    return snapshot.get();
}

} // namespace

int runReport(const command::Report &options, const Host &host, Instant now)
{
    QTimeZone zone = QTimeZone::systemTimeZone();
    if (!zone.isValid())
        zone = QTimeZone::utc();

    const UsageSnapshot snapshot = takeSnapshotShowingProgress(host, now, zone);
    QByteArray output;
    if (options.asJson) {
        output = encodeSnapshot(snapshot);
    } else {
        std::vector<WindowUsageSummary> windows = snapshot.summaries;
        if (options.window)
            windows = {snapshot.summary(*options.window, now, zone)};
        output = reportTable(windows, now, styleOfStandardOutput()).toUtf8();
    }
    // A full disk or a closed pipe shows in the first for long outputs, in the second for short
    // ones.
    const auto size = static_cast<std::size_t>(output.size());
    const bool isWritten = std::fwrite(output.constData(), 1, size, stdout) == size;
    return isWritten && std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace tallyglass
