#include "app/Report.h"

#include "app/Output.h"
#include "app/ReportTable.h"
#include "app/TerminalText.h"
#include "services/TakeSnapshot.h"
#include "store/SnapshotFile.h"

namespace tallyglass {

int runReport(const command::Report &options, Instant now)
{
    const QTimeZone zone = systemZone();
    const auto snapshot =
        collectFromHome(options.inDemoHome, [&](const Host &host, CollectionProgress &progress) {
            return takeSnapshot(host, now, zone, progress, options.counting);
        });
    if (options.asJson)
        return print(printableJson(encodeSnapshot(snapshot)));
    std::vector<WindowUsageSummary> windows = snapshot.summaries;
    if (options.window)
        windows = {snapshot.summary(*options.window, now, zone)};
    return print(reportTable(windows, now, styleOfStandardOutput()).toUtf8());
}

} // namespace tallyglass
