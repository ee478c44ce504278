#pragma once

#include "collect/LogFiles.h"
#include "collect/NameTable.h"
#include "collect/RecordParser.h"
#include "json/JsonReader.h"

#include <new>
#include <vector>

class QTimeZone;

namespace tallyglass {

inline constexpr std::size_t cacheLine = 64; // bytes, or half of one on some processors

/// Memory that begins with a cache line. Where plain allocations begin, a few bytes behind the
/// start of a page, the copy out of the kernel takes four times as long.
template<typename Element>
struct CacheLineAllocator
{
    using value_type = Element;

    static Element *allocate(std::size_t count)
    {
        return static_cast<Element *>(operator new(count * sizeof(Element), alignment));
    }
    static void deallocate(Element *memory, std::size_t) { operator delete(memory, alignment); }
    bool operator==(const CacheLineAllocator &) const = default;

private:
    static constexpr std::align_val_t alignment{cacheLine};
};

/// Reads one log file after the other, reusing its buffers. One worker thread owns each.
class LogFileReader
{
public:
    /// \a zone is that of dates without one; it must outlive the reader.
    explicit LogFileReader(const QTimeZone &zone);

    /// Appends the file's events in its order, and for each a mark if \a marks are asked for. A
    /// file that cannot be read, or is not UTF-8 throughout, gives none.
    void readLogFile(const LogFile &file, std::vector<UsageEvent> &events,
                     FileMarks *marks = nullptr);

private:
    template<typename Take>
    bool readLines(int file, FileMarks *marks, Take take);
    template<typename Take>
    void takeLines(std::span<char> lines, FileMarks *marks, Take take);
    const JsonValue *readDocument(int file);
    bool mentionsUsage(int file);
    std::optional<std::size_t> readMore(int file, std::size_t filled);
    std::size_t capacity() const;

    const QTimeZone &m_zone;
    NameTable m_names;
    JsonReader m_json;
    /// capacity() bytes of text, then some for scan and parser.
    std::vector<char, CacheLineAllocator<char>> m_buffer;
};

} // namespace tallyglass
