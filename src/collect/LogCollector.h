#pragma once

#include "model/Instant.h"
#include "model/UsageEvent.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>

class QTimeZone;

namespace tallyglass {

/// Takes the events of one file, in its order. \a fileOrder is the file's index in the order of
/// reading: the roots one after the other, and the status line bridge's file last.
using EventSink = std::function<void(std::size_t fileOrder, std::span<const UsageEvent> events)>;

/// How far a collection has come. Written by its workers, read by whoever shows it.
struct CollectionProgress
{
    std::atomic<std::int64_t> bytesFound = 0;
    std::atomic<std::int64_t> bytesRead = 0;
};

/// Reads every log below \a home that was modified at or after \a cutoff, in as many threads as
/// there are \a sinks. Each sink is called from one thread only.
///
/// Never fails: what cannot be read gives no events. No list of all events is made, so that memory
/// is bounded by the largest file and not by the number of them.
void collectEvents(const QString &home, Instant cutoff, const QTimeZone &zone,
                   std::span<const EventSink> sinks, CollectionProgress &progress);

} // namespace tallyglass
