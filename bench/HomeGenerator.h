#pragma once

#include "model/Instant.h"
#include "model/TokenUsage.h"
#include "model/UsageProvider.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tallyglass::bench {

struct HomeOptions
{
    std::filesystem::path folder; ///< made when it is not there
    std::int64_t size = 0; ///< bytes of all logs together, met within a few lines
    std::uint64_t seed = 1;
    Instant now; ///< no record is younger
};

/// What a reading of the logs must find.
struct WrittenEvent
{
    Instant date;
    UsageProvider provider = UsageProvider::Claude;
    std::string model; ///< empty when the record names none
    TokenUsage tokens;

    bool operator==(const WrittenEvent &) const = default;
};

struct GeneratedHome
{
    std::int64_t bytes = 0;
    std::int64_t files = 0;
    std::int64_t bytesOfUsageLines = 0; ///< of the lines that give events
    std::vector<WrittenEvent> events;
};

/// Writes a home folder in which all three tools have been at work for a month: the shapes and the
/// proportions of real logs, with made-up content. The same options give the same bytes.
GeneratedHome generateHome(const HomeOptions &options);

} // namespace tallyglass::bench
