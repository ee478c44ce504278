#pragma once

#include "collect/JsonReader.h"
#include "collect/LogFiles.h"
#include "collect/NameTable.h"
#include "collect/RecordParser.h"

#include <vector>

class QTimeZone;

namespace tallyglass {

/// Reads one log file after the other, reusing its buffers. One worker thread owns each.
class LogFileReader
{
public:
    /// \a zone is that of dates without one; it must outlive the reader.
    explicit LogFileReader(const QTimeZone &zone);

    /// Appends the file's events in its order. A file that cannot be read, or is not UTF-8
    /// throughout, gives none.
    void readLogFile(const LogFile &file, std::vector<UsageEvent> &events);

private:
    template<typename Take>
    bool readLines(int file, Take take);
    template<typename Take>
    void takeLines(std::size_t size, Take take);
    const JsonValue *readDocument(int file);
    bool mentionsUsage(int file);
    std::optional<std::size_t> readMore(int file, std::size_t filled);
    std::size_t capacity() const;

    const QTimeZone &m_zone;
    NameTable m_names;
    JsonReader m_json;
    std::vector<char> m_buffer; ///< capacity() bytes of text, then some for scan and parser
};

} // namespace tallyglass
