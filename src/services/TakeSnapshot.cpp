#include "services/TakeSnapshot.h"

#include "model/SnapshotBuilder.h"
#include "store/BudgetsFile.h"

#include <array>

namespace tallyglass {

UsageSnapshot takeSnapshot(const Host &host, Instant now, const QTimeZone &zone,
                           CollectionProgress &progress)
{
    const UsageBudgets budgets = loadBudgets(StorageLocations(host));

    // Two workers halve the time; more would take a developer's machine away for a menu-bar figure.
    std::array<SnapshotBuilder, 2> builders{SnapshotBuilder(now, zone), SnapshotBuilder(now, zone)};
    std::array<EventSink, builders.size()> sinks;
    for (std::size_t worker = 0; worker < builders.size(); ++worker) {
        sinks[worker] = [&builder = builders[worker]](std::size_t fileOrder,
                                                      std::span<const UsageEvent> events) {
            for (const UsageEvent &event : events)
                builder.add(event, fileOrder);
        };
    }
    collectEvents(host.homeFolder, collectionCutoff(now, zone), zone, sinks, progress);

    builders[0].merge(builders[1]);
    return builders[0].build(budgets);
}

} // namespace tallyglass
