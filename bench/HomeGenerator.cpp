#include "HomeGenerator.h"

#include "Sessions.h"

#include <algorithm>
#include <array>

namespace tallyglass::bench {

namespace {

/// Just below the size above which no file is read, with room for a last line.
constexpr std::int64_t largestSession = 30 * 1024 * 1024; // bytes
constexpr std::int64_t smallestSession = 4 * 1024; // bytes

/// One tool's part of the bytes.
struct Share
{
    void (*writeSession)(Workshop &, std::int64_t size);
    std::int64_t percent;
};
constexpr std::array shares{Share{writeClaudeSession, 78}, Share{writeCodexSession, 17},
                            Share{writeCopilotSession, 5}};

void writeStateFiles(Workshop &workshop)
{
    writeDocument(workshop, ".claude/settings.json",
                  R"({"model":"opus","permissions":{"allow":["WebSearch"]
}
})");
    writeDocument(workshop, ".claude/stats-cache.json",
                  R"({"version":1,"dailyModelTokens":[{"date":"2025-06-01","tokensByModel":{}}]})");
}

} // namespace

GeneratedHome generateHome(const HomeOptions &options)
{
    Workshop workshop(options);
    GeneratedHome &result = workshop.result;
    writeStateFiles(workshop);

    for (const Share &share : shares) {
        const std::int64_t end = result.bytes + options.size / 100 * share.percent;
        while (end - result.bytes >= smallestSession) {
            const std::int64_t size = workshop.random.spread(smallestSession, largestSession, 1.4);
            share.writeSession(workshop, std::min(size, end - result.bytes));
        }
    }
    return std::move(result);
}

} // namespace tallyglass::bench
