#include "services/CollectUses.h"

#include <algorithm>
#include <iterator>

namespace tallyglass {

namespace {

FileUses usesOf(const FileEvents &file)
{
    FileUses uses{.order = file.order, .path = file.file.path, .isFork = file.marks->isFork};
    uses.uses.reserve(file.events.size());
    for (std::size_t i = 0; i < file.events.size(); ++i)
        uses.uses.emplace_back(file.events[i], file.marks->events[i]);
    return uses;
}

} // namespace

std::vector<FileUses> collectUses(const Host &host, Instant cutoff, const QTimeZone &zone,
                                  const WorkerSinks &sinks, CollectionProgress &progress,
                                  Marks marks)
{
    std::array<std::vector<FileUses>, collectionWorkers> found;
    WorkerSinks both;
    for (std::size_t worker = 0; worker < both.size(); ++worker) {
        both[worker] = [&mine = found[worker], &sink = sinks[worker]](const FileEvents &file) {
            if (file.events.empty())
                return;
            mine.push_back(usesOf(file));
            sink(file);
        };
    }
    collectEvents(host, cutoff, zone, both, progress, marks);

    std::vector<FileUses> all = std::move(found[0]);
    std::ranges::move(found[1], std::back_inserter(all));
    std::ranges::sort(all, {}, &FileUses::order);
    return all;
}

} // namespace tallyglass
