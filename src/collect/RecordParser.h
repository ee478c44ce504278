#pragma once

#include "collect/NameTable.h"
#include "json/JsonValue.h"
#include "model/EventMark.h"
#include "model/UsageEvent.h"

#include <vector>

class QTimeZone;

namespace tallyglass {

/// What every record of one log file shares.
struct LogOrigin
{
    UsageProvider provider; ///< the tool in whose folder the file stands
    Instant fileDate; ///< the date of records that give none
    QString source; ///< the file's name
    const QTimeZone &zone; ///< of dates that are a clock's reading
    NameTable &names;
    FileMarks *marks = nullptr; ///< gets one for each event; null: nobody asks for them
};

/// Walks one JSON value at any depth and appends an event for every object with token counters or
/// rate limits. Objects inherit date, model and provider from the one around them.
void parseRecord(const JsonValue &value, const LogOrigin &origin, std::vector<UsageEvent> &events);

} // namespace tallyglass
