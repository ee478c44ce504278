#pragma once

#include "collect/LogCollector.h"
#include "model/AnswerCounting.h"
#include "platform/Host.h"

#include <array>

namespace tallyglass {

/// Two workers halve the time; more would take a developer's machine away for a menu-bar figure.
inline constexpr std::size_t collectionWorkers = 2;
using WorkerSinks = std::array<EventSink, collectionWorkers>;

/// Reads all logs and keeps the tokens of every event, for those to whom sums do not tell enough.
/// Gives the files in the order of reading, and shows their events to \a sinks besides. Takes about
/// 150 bytes of memory for each event.
std::vector<FileUses> collectUses(const Host &host, Instant cutoff, const QTimeZone &zone,
                                  const WorkerSinks &sinks, CollectionProgress &progress,
                                  Marks marks = Marks::AskedWithLines);

} // namespace tallyglass
