#include "collect/LogCollector.h"

#include "collect/LogFileReader.h"
#include "collect/LogFiles.h"
#include "model/FatalFault.h"

#include <algorithm>
#include <numeric>
#include <thread>
#include <vector>

namespace tallyglass {

namespace {

/// Files in the order in which they are read: the largest first, so that no worker is left with a
/// large one when the others have ended.
std::vector<std::size_t> largestFirst(const std::vector<LogFile> &files)
{
    std::vector<std::size_t> order(files.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::sort(order, std::ranges::greater{},
                      [&](std::size_t file) { return files[file].size; });
    return order;
}

} // namespace

void collectEvents(const Host &host, Instant cutoff, const QTimeZone &zone,
                   std::span<const EventSink> sinks, CollectionProgress &progress, Marks marks)
{
    const std::vector<LogFile> files = findLogFiles(host, cutoff);
    const std::vector<std::size_t> order = largestFirst(files);
    for (const LogFile &file : files)
        progress.bytesFound += file.size;

    std::atomic<std::size_t> next = 0;
    const auto work = [&](const EventSink &sink) {
        LogFileReader reader(zone);
        std::vector<UsageEvent> events;
        FileMarks fileMarks{.hasLines = marks == Marks::AskedWithLines};
        FileMarks *const asked = marks == Marks::None ? nullptr : &fileMarks;
        for (std::size_t i = next++; i < order.size(); i = next++) {
            const LogFile &file = files[order[i]];
            fileAtWork = &file.path;
            events.clear();
            reader.readLogFile(file, events, asked);
            sink({.file = file, .order = order[i], .events = events, .marks = asked});
            progress.bytesRead += file.size;
        }
        fileAtWork = nullptr;
    };

    std::vector<std::thread> workers;
    for (const EventSink &sink : sinks.subspan(1))
        workers.emplace_back(work, std::cref(sink));
    work(sinks.front());
    for (std::thread &worker : workers)
        worker.join();
}

} // namespace tallyglass
