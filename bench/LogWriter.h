#pragma once

#include "HomeGenerator.h"
#include "Random.h"
#include "TextPool.h"

#include <fstream>

namespace tallyglass::bench {

/// What the sessions of one home share.
struct Workshop
{
    HomeOptions options;
    Random random;
    TextPool texts{random};
    GeneratedHome result;

    explicit Workshop(HomeOptions chosen)
        : options(std::move(chosen))
        , random(options.seed)
    {
    }

    /// When a session begins: most of the month's, some of the last hours'.
    Instant sessionStart();
};

/// One log under construction: counts what it writes, and moves its clock on with every line.
class LogWriter
{
public:
    /// \a path is below the home folder.
    LogWriter(Workshop &workshop, const std::filesystem::path &path, Instant start);

    std::int64_t size() const { return m_size; }
    Instant date() const { return m_date; }
    /// The clock's reading as the tools write it: "2025-06-01T09:30:00.123Z".
    std::string timestamp() const;

    /// \a line has no line break.
    void write(std::string_view line);
    /// Writes a line that gives an event.
    void writeUsage(std::string_view line, UsageProvider provider, std::string_view model,
                    const TokenUsage &tokens);

private:
    Workshop &m_workshop;
    std::ofstream m_file;
    std::int64_t m_size = 0;
    Instant m_date;
};

/// Writes a file that is no log.
void writeDocument(Workshop &workshop, const std::filesystem::path &path, std::string_view text);

} // namespace tallyglass::bench
