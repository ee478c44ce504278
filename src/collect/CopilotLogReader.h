#pragma once

#include "collect/RecordParser.h"

#include <map>

namespace tallyglass {

/// Gathers the shutdown records of one Copilot session file. A session that was resumed has
/// several; each model counts once, with the figures of its latest record.
class CopilotLogReader
{
public:
    explicit CopilotLogReader(const LogOrigin &origin);

    /// Takes one line of the file. Whatever is not a shutdown record is passed over.
    void take(const JsonValue &record);

    /// One event for each model. Where marks are asked for, the earlier records of the models too.
    std::vector<UsageEvent> events() const;

private:
    struct Entry
    {
        Instant date;
        TokenUsage usage;
        EventMark mark;
    };

    const LogOrigin &m_origin;
    std::map<std::string, Entry, std::less<>> m_models;
    std::vector<std::pair<std::string, Entry>> m_earlier; ///< only where marks are asked for
};

} // namespace tallyglass
