#pragma once

#include "model/Instant.h"
#include "model/UsageWindowKind.h"

class QTimeZone;

namespace tallyglass {

/// The span of a window. An event counts when it lies within, both ends included.
struct WindowInterval
{
    Instant start;
    Instant end;

    bool operator==(const WindowInterval &) const = default;
    bool contains(Instant date) const { return start <= date && date <= end; }
};

/// A rolling window ends now; hour, day and month are the calendar's in \a zone and end in the
/// future.
WindowInterval interval(UsageWindowKind kind, Instant now, const QTimeZone &zone);

/// Logs last written before this hold nothing for any window of \a now. One day of margin keeps a
/// file that was last written just before a window opened.
Instant collectionCutoff(Instant now, const QTimeZone &zone);

} // namespace tallyglass
