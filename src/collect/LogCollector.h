#pragma once

#include "collect/LogFiles.h"
#include "model/EventMark.h"
#include "model/UsageEvent.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>

class QTimeZone;

namespace tallyglass {

/// What was read from one file.
struct FileEvents
{
    const LogFile &file;
    /// Its index in the order of reading: the roots one after the other, and the status line
    /// bridge's file last.
    std::size_t order;
    std::span<const UsageEvent> events; ///< in their order
    const FileMarks *marks; ///< null where they were not asked for
};

using EventSink = std::function<void(const FileEvents &)>;

enum class Marks : std::uint8_t {
    None,
    Asked,
    AskedWithLines, ///< takes as long again as the rest of the marks, since all lines are counted
};

/// How far a collection has come. Written by its workers, read by whoever shows it.
struct CollectionProgress
{
    std::atomic<std::int64_t> bytesFound = 0;
    std::atomic<std::int64_t> bytesRead = 0;
};

/// Reads every log of \a host that was modified at or after \a cutoff, in as many threads as
/// there are \a sinks. Each sink is called from one thread only.
///
/// Never fails: what cannot be read gives no events. No list of all events is made, so that memory
/// is bounded by the largest file and not by the number of them.
void collectEvents(const Host &host, Instant cutoff, const QTimeZone &zone,
                   std::span<const EventSink> sinks, CollectionProgress &progress,
                   Marks marks = Marks::None);

} // namespace tallyglass
