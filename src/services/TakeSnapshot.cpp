#include "services/TakeSnapshot.h"

#include "model/SnapshotBuilder.h"
#include "services/CollectUses.h"
#include "store/BudgetsFile.h"

namespace tallyglass {

namespace {

using Builders = std::array<SnapshotBuilder, collectionWorkers>;

void addEveryRecord(Builders &builders, const Host &host, Instant cutoff, const QTimeZone &zone,
                    CollectionProgress &progress)
{
    WorkerSinks sinks;
    for (std::size_t worker = 0; worker < sinks.size(); ++worker) {
        sinks[worker] = [&builder = builders[worker]](const FileEvents &file) {
            for (const UsageEvent &event : file.events)
                builder.add(event, file.order);
        };
    }
    collectEvents(host, cutoff, zone, sinks, progress);
}

void addEachAnswerOnce(Builders &builders, const Host &host, Instant cutoff, const QTimeZone &zone,
                       CollectionProgress &progress)
{
    WorkerSinks sinks;
    for (std::size_t worker = 0; worker < sinks.size(); ++worker) {
        sinks[worker] = [&builder = builders[worker]](const FileEvents &file) {
            for (const UsageEvent &event : file.events)
                builder.addLimits(event, file.order);
        };
    }
    const std::vector<FileUses> files =
        collectUses(host, cutoff, zone, sinks, progress, Marks::Asked);
    const auto verdicts = judge(files);
    for (std::size_t file = 0; file < files.size(); ++file) {
        for (std::size_t i = 0; i < files[file].uses.size(); ++i) {
            const MarkedUse &use = files[file].uses[i];
            if (const auto tokens = countedUsage(use, verdicts[file][i], Counting::EachAnswerOnce))
                builders[0].addTokens(use.provider, use.date, use.model, *tokens);
        }
    }
}

} // namespace

UsageSnapshot takeSnapshot(const Host &host, Instant now, const QTimeZone &zone,
                           CollectionProgress &progress, Counting counting)
{
    const UsageBudgets budgets = loadBudgets(StorageLocations(host));
    const Instant cutoff = collectionCutoff(now, zone);
    Builders builders{SnapshotBuilder(now, zone), SnapshotBuilder(now, zone)};
    switch (counting) {
    case Counting::EveryRecord:
        addEveryRecord(builders, host, cutoff, zone, progress);
        break;
    case Counting::EachAnswerOnce:
        addEachAnswerOnce(builders, host, cutoff, zone, progress);
        break;
    }
    builders[0].merge(builders[1]);
    return builders[0].build(budgets);
}

} // namespace tallyglass
