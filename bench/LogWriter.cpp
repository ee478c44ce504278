#include "LogWriter.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tallyglass::bench {

using namespace std::chrono;

Instant Workshop::sessionStart()
{
    const auto earliest = duration_cast<milliseconds>(days{30}).count();
    const auto latest = duration_cast<milliseconds>(hours{5}).count();
    return options.now
        - milliseconds{random.oneIn(10) ? random.between(0, latest) : random.between(0, earliest)};
}

LogWriter::LogWriter(Workshop &workshop, const std::filesystem::path &path, Instant start)
    : m_workshop(workshop)
    , m_date(start)
{
    const auto whole = workshop.options.folder / path;
    std::filesystem::create_directories(whole.parent_path());
    m_file.open(whole, std::ios::binary);
    ++workshop.result.files;
}

std::string LogWriter::timestamp() const
{
    const auto day = floor<days>(m_date);
    const year_month_day date{day};
    const hh_mm_ss time{m_date - day};
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()),
                  static_cast<int>(time.subseconds().count()));
    return text.data();
}

void LogWriter::write(std::string_view line)
{
    m_file << line << '\n';
    const auto size = static_cast<std::int64_t>(line.size()) + 1;
    m_size += size;
    m_workshop.result.bytes += size;
    m_date = std::min(m_date + milliseconds{m_workshop.random.spread(50, 60'000)},
                      m_workshop.options.now);
}

void LogWriter::writeUsage(std::string_view line, UsageProvider provider, std::string_view model,
                           const TokenUsage &tokens)
{
    m_workshop.result.bytesOfUsageLines += static_cast<std::int64_t>(line.size()) + 1;
    m_workshop.result.events.push_back(
        {.date = m_date, .provider = provider, .model = std::string(model), .tokens = tokens});
    write(line);
}

void writeDocument(Workshop &workshop, const std::filesystem::path &path, std::string_view text)
{
    LogWriter(workshop, path, workshop.options.now).write(text);
}

} // namespace tallyglass::bench
