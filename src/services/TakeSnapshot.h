#pragma once

#include "collect/LogCollector.h"
#include "model/AnswerCounting.h"
#include "model/UsageSnapshot.h"
#include "platform/Host.h"

class QTimeZone;

namespace tallyglass {

/// Reads the logs of the home folder and sums them up: the whole way from files to the snapshot of
/// \a now. May take seconds. Touches nothing shared and writes nothing.
UsageSnapshot takeSnapshot(const Host &host, Instant now, const QTimeZone &zone,
                           CollectionProgress &progress, Counting counting = Counting::EveryRecord);

} // namespace tallyglass
