#include "collect/LogFileReader.h"

#include "collect/CodexThread.h"
#include "collect/CopilotLogReader.h"
#include "collect/FieldAliases.h"
#include "collect/TextScan.h"

#include <simdjson.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallyglass {

namespace {

/// Stays in the second-level cache from the copy out of the kernel to the scan of what was copied.
constexpr std::size_t bufferSize = 131'072; // bytes
constexpr std::size_t padding = std::max(scanPadding, JsonReader::padding);

/// An open regular file, or nothing.
class OpenFile
{
public:
    explicit OpenFile(const std::string &path)
        // A pipe that took the file's place meanwhile must not block until somebody writes to it.
        : m_descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC))
    {
        struct stat status{};
        m_isRegular =
            m_descriptor >= 0 && fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    }
    ~OpenFile()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool isRegular() const { return m_isRegular; }
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
    bool m_isRegular = false;
};

/// The length of the white space character at the front, 0 when there is none.
std::size_t whiteSpaceLength(std::string_view text)
{
    const char first = text.front();
    if (first == ' ' || (first >= '\t' && first <= '\r'))
        return 1;
    if ((first & 0x80) == 0)
        return 0;
    // Beyond ASCII: U+0085, U+00A0, U+1680, U+2000 to U+200A, U+2028, U+2029, U+202F, U+205F,
    // U+3000.
    constexpr std::array<std::string_view, 19> others{
        "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81",
        "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86",
        "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8",
        "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};
    for (const std::string_view other : others) {
        if (text.starts_with(other))
            return other.size();
    }
    return 0;
}

std::string_view trimmed(std::string_view line)
{
    while (!line.empty()) {
        const std::size_t length = whiteSpaceLength(line);
        if (length == 0)
            break;
        line.remove_prefix(length);
    }
    const auto trailingLength = [&]() -> std::size_t {
        for (std::size_t length = 1; length <= std::min<std::size_t>(3, line.size()); ++length) {
            if (whiteSpaceLength(line.substr(line.size() - length)) == length)
                return length;
        }
        return 0;
    };
    for (std::size_t length = 1; length > 0;) {
        length = trailingLength();
        line.remove_suffix(length);
    }
    return line;
}

} // namespace

LogFileReader::LogFileReader(const QTimeZone &zone)
    : m_zone(zone)
    , m_json(countingFields)
    , m_buffer(bufferSize + padding)
{
}

std::size_t LogFileReader::capacity() const
{
    return m_buffer.size() - padding;
}

void LogFileReader::readLogFile(const LogFile &file, std::vector<UsageEvent> &events,
                                FileMarks *marks)
{
    const OpenFile opened(file.path);
    if (!opened.isRegular())
        return;

    const std::string_view name = std::string_view(file.path).substr(file.path.rfind('/') + 1);
    const LogOrigin origin{.provider = file.provider,
                           .fileDate = file.modified,
                           .source =
                               QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())),
                           .zone = m_zone,
                           .names = m_names,
                           .marks = marks};
    if (marks) {
        const bool isCodex = file.provider == UsageProvider::Codex;
        marks->isFork = isCodex && isForkedThread(file.path);
        marks->line = marks->hasLines ? 1 : 0;
        marks->events.clear();
    }

    if (factsOf(file.provider).logFormat == LogFormat::CopilotSessions) {
        CopilotLogReader copilot(origin);
        if (readLines(opened.descriptor(), marks,
                      [&](const JsonValue &record) { copilot.take(record); }))
            std::ranges::move(copilot.events(), std::back_inserter(events));
    } else if (file.isDocument) {
        if (const JsonValue *document = readDocument(opened.descriptor()))
            parseRecord(*document, origin, events);
    } else {
        const std::size_t before = events.size();
        if (!readLines(opened.descriptor(), marks,
                       [&](const JsonValue &record) { parseRecord(record, origin, events); }))
            events.resize(before);
        if (marks)
            marks->events.resize(events.size() - before);
    }
}

/// Gives every line that is JSON and may count to \a take. False when the file cannot be read to
/// its end or is not UTF-8; what was taken until then does not count.
template<typename Take>
bool LogFileReader::readLines(int file, FileMarks *marks, Take take)
{
    std::size_t total = 0;
    std::size_t start = 0;
    std::size_t filled = 0;
    for (bool isAtEnd = false; !isAtEnd;) {
        if (filled == capacity())
            m_buffer.resize(2 * capacity() + padding); // The line is longer than the buffer.
        const auto count = readMore(file, filled);
        if (!count)
            return false;
        total += *count;
        // A file that grows as fast as it is read must come to an end all the same.
        isAtEnd = *count == 0 || total > largestFileRead;

        const std::size_t lastLine = afterLastLineFeed(&m_buffer[filled], *count);
        const std::size_t complete = lastLine > 0 ? filled + lastLine : start;
        filled += *count;
        const std::size_t taken = isAtEnd ? filled : complete;
        const std::span<char> lines(&m_buffer[start], taken - start);
        if (!simdjson::validate_utf8(lines.data(), lines.size()))
            return false;
        takeLines(lines, marks, take);

        // The unfinished line goes to the front, so that what is read next begins a cache line.
        const std::size_t unfinished = filled - taken;
        filled = (unfinished + cacheLine - 1) / cacheLine * cacheLine;
        start = filled - unfinished;
        std::memmove(&m_buffer[start], &m_buffer[taken], unfinished);
    }
    return true;
}

/// \a lines lie in the buffer.
template<typename Take>
void LogFileReader::takeLines(std::span<char> lines, FileMarks *marks, Take take)
{
    std::size_t counted = 0;
    // Not within a line that was parsed: its strings have been decoded in place, line feeds too.
    const auto countLinesBefore = [&](std::size_t position) {
        if (marks && marks->hasLines)
            marks->line += static_cast<std::uint32_t>(
                std::ranges::count(lines.subspan(counted, position - counted), '\n'));
    };
    const std::string_view text(lines.data(), lines.size());
    std::size_t marker = findUsageMarker(text.data(), 0, text.size());
    while (marker < text.size()) {
        const std::size_t start = afterLastLineFeed(text.data(), marker);
        const std::size_t end = std::min(text.find('\n', marker), text.size());
        const std::string_view line = trimmed(text.substr(start, end - start));
        if (line.starts_with('{') || line.starts_with('[')) {
            countLinesBefore(start);
            counted = end;
            char *const first = lines.data() + (line.data() - text.data());
            if (const JsonValue *record = m_json.parse({first, line.size()}))
                take(*record);
        }
        marker = findUsageMarker(text.data(), end, text.size());
    }
    countLinesBefore(text.size());
}

const JsonValue *LogFileReader::readDocument(int file)
{
    // Most documents are no logs; only those that may count are held in memory as a whole.
    if (!mentionsUsage(file) || lseek(file, 0, SEEK_SET) != 0)
        return nullptr;
    std::size_t filled = 0;
    while (filled <= largestFileRead) {
        if (filled == capacity())
            m_buffer.resize(2 * capacity() + padding);
        const auto count = readMore(file, filled);
        if (!count)
            return nullptr;
        if (*count == 0)
            break;
        filled += *count;
    }
    if (!simdjson::validate_utf8(m_buffer.data(), filled))
        return nullptr;
    return m_json.parse({m_buffer.data(), filled});
}

bool LogFileReader::mentionsUsage(int file)
{
    constexpr std::size_t longestMarker = 10; // "rate_limit"
    std::size_t kept = 0; // So much of the text before, since a marker may lie across.
    std::size_t total = 0;
    while (total <= largestFileRead) {
        const auto count = readMore(file, kept);
        if (!count || *count == 0)
            return false;
        total += *count;
        const std::size_t filled = kept + *count;
        if (findUsageMarker(m_buffer.data(), 0, filled) < filled)
            return true;
        kept = std::min(filled, longestMarker);
        std::memmove(m_buffer.data(), &m_buffer[filled - kept], kept);
    }
    return false;
}

/// Reads what comes next in the file into the buffer behind \a filled bytes, and gives its length:
/// 0 at the end, nothing when the file cannot be read.
std::optional<std::size_t> LogFileReader::readMore(int file, std::size_t filled)
{
    ssize_t count = 0;
    do {
        count = read(file, &m_buffer[filled], capacity() - filled);
    } while (count < 0 && errno == EINTR);
    return count < 0 ? std::nullopt : std::optional{static_cast<std::size_t>(count)};
}

} // namespace tallyglass
