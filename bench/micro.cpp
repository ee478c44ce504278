// The steps of a collection one by one. Each answer is compared with that of a plain reading before
// it is timed.

#include "HomeGenerator.h"
#include "collect/FieldAliases.h"
#include "collect/RecordParser.h"
#include "collect/TextScan.h"
#include "json/JsonReader.h"
#include "model/SnapshotBuilder.h"

#include <QTemporaryDir>
#include <QTimeZone>
#include <simdjson.h>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <numeric>
#include <utility>

using namespace tallyglass;
using namespace tallyglass::bench;

namespace {

constexpr Instant now{std::chrono::seconds{1'750'000'000}};

void require(bool holds, const char *claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "WRONG: %s does not hold, so there is nothing to time.\n", claim);
    std::exit(1);
}

/// Whether one of the shapes that findUsageMarker() looks for begins at \a at.
bool isMarkerPlainly(std::string_view text, std::size_t at)
{
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("_tokens\"") || rest.starts_with("Metrics\""))
        return true;
    if (rest.starts_with("_limit"))
        return at >= 4 && text.substr(at - 4, 4) == "rate";
    return rest.size() > 4 && rest.starts_with("\\u00") && rest[4] >= '4' && rest[4] <= '7';
}

bool isUtf8Plainly(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = [&](std::size_t at) -> std::uint32_t {
            return at < text.size() ? static_cast<std::uint8_t>(text[at]) : 0;
        };
        const std::uint32_t first = byte(i);
        const std::size_t length = first < 0x80 ? 1
            : first >= 0xc2 && first < 0xe0     ? 2
            : first >= 0xe0 && first < 0xf0     ? 3
            : first >= 0xf0 && first < 0xf5     ? 4
                                                : 0;
        if (length == 0)
            return false;
        std::uint32_t character = length == 1 ? first : first & (0x7fU >> length);
        for (std::size_t next = 1; next < length; ++next) {
            if ((byte(i + next) & 0xc0) != 0x80)
                return false;
            character = character << 6 | (byte(i + next) & 0x3f);
        }
        const bool isSurrogate = character >= 0xd800 && character < 0xe000;
        if (isSurrogate || character > 0x10ffff || (length == 3 && character < 0x800)
            || (length == 4 && character < 0x10000))
            return false;
        i += length;
    }
    return true;
}

struct UsageLine
{
    std::string_view text;
    UsageProvider provider;
};

/// The transcripts and rollouts of a small home.
struct Logs
{
    std::string padded; ///< the text, and zeros that may be read beyond it
    std::string_view text;
    std::vector<UsageLine> usageLines;
    std::vector<WrittenEvent> events;
};

Logs makeLogs()
{
    const QTemporaryDir folder;
    const std::filesystem::path home = folder.path().toStdString();
    Logs logs{.events = generateHome({.folder = home, .size = 8 << 20, .now = now}).events};
    std::erase_if(logs.events, [](const WrittenEvent &event) {
        return event.provider == UsageProvider::Copilot;
    });

    for (const char *root : {".claude", ".codex"}) {
        for (const auto &entry : std::filesystem::recursive_directory_iterator(home / root)) {
            if (entry.path().extension() != ".jsonl")
                continue;
            std::ifstream file(entry.path(), std::ios::binary);
            logs.padded.append(std::istreambuf_iterator<char>(file), {});
        }
    }
    const std::size_t size = logs.padded.size();
    logs.padded.append(scanPadding, '\0');
    logs.text = std::string_view(logs.padded).substr(0, size);

    for (std::size_t start = 0; start < size;) {
        const std::size_t end = logs.text.find('\n', start);
        const std::string_view line = logs.text.substr(start, end - start);
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (isMarkerPlainly(line, at)) {
                const bool isRollout = line.find(R"("payload")") != std::string_view::npos;
                logs.usageLines.push_back(
                    {line, isRollout ? UsageProvider::Codex : UsageProvider::Claude});
                break;
            }
        }
        start = end + 1;
    }
    return logs;
}

const Logs &logs()
{
    static const Logs made = makeLogs();
    return made;
}

void countBytes(benchmark::State &state, std::size_t bytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

std::size_t usageLineBytes()
{
    return std::transform_reduce(logs().usageLines.begin(), logs().usageLines.end(), std::size_t{0},
                                 std::plus<>(),
                                 [](const UsageLine &line) { return line.text.size(); });
}

void scan(benchmark::State &state)
{
    const std::string_view text = logs().text;
    const auto next = [&](std::size_t from) {
        return findUsageMarker(text.data(), from, text.size());
    };
    for (std::size_t at = 0, found = next(0); at < text.size(); ++at) {
        require(isMarkerPlainly(text, at) == (at == found), "a marker is found where it is");
        if (at == found)
            found = next(at + 1);
    }

    // As the collection does it: on from the end of the line in which there was one.
    for (auto _ : state) {
        for (std::size_t at = next(0); at < text.size(); at = next(text.find('\n', at)))
            benchmark::DoNotOptimize(at);
    }
    countBytes(state, text.size());
}
BENCHMARK(scan)->Unit(benchmark::kMicrosecond);

void checkUtf8(benchmark::State &state)
{
    const std::string_view text = logs().text;
    require(isUtf8Plainly(text) && simdjson::validate_utf8(text.data(), text.size()),
            "the logs are UTF-8");
    std::string broken(text);
    for (std::size_t at = 7; at < broken.size(); at += broken.size() / 16) {
        const char held = std::exchange(broken[at], '\xff');
        require(!isUtf8Plainly(broken) && !simdjson::validate_utf8(broken.data(), broken.size()),
                "a broken byte is found");
        broken[at] = held;
    }

    for (auto _ : state)
        benchmark::DoNotOptimize(simdjson::validate_utf8(text.data(), text.size()));
    countBytes(state, text.size());
}
BENCHMARK(checkUtf8)->Unit(benchmark::kMicrosecond);

/// Parses a line of usage in a copy, as the reader uses the text up.
class Parser
{
public:
    const JsonValue *parse(std::string_view line)
    {
        m_text.resize(std::max(m_text.size(), line.size() + JsonReader::padding));
        std::ranges::copy(line, m_text.begin());
        return m_reader.parse({m_text.data(), line.size()});
    }

private:
    JsonReader m_reader{countingFields};
    std::vector<char> m_text;
};

void parse(benchmark::State &state)
{
    Parser parser;
    for (const UsageLine &line : logs().usageLines)
        require(parser.parse(line.text) != nullptr, "a line of usage is read");

    for (auto _ : state) {
        for (const UsageLine &line : logs().usageLines)
            benchmark::DoNotOptimize(parser.parse(line.text));
    }
    countBytes(state, usageLineBytes());
    state.counters["lines"] = static_cast<double>(logs().usageLines.size());
}
BENCHMARK(parse)->Unit(benchmark::kMicrosecond);

/// The time of an iteration is one of parsing and walking; that of parsing alone stands above.
void parseAndWalk(benchmark::State &state)
{
    const QTimeZone zone = QTimeZone::utc();
    NameTable names;
    Parser parser;
    std::vector<UsageEvent> events;
    const auto walkAll = [&] {
        events.clear();
        for (const auto &[line, provider] : logs().usageLines) {
            const LogOrigin origin{
                .provider = provider, .fileDate = now, .source = {}, .zone = zone, .names = names};
            parseRecord(*parser.parse(line), origin, events);
        }
    };

    walkAll();
    std::vector<WrittenEvent> found;
    for (const UsageEvent &event : events)
        found.push_back({.date = event.date,
                         .provider = event.provider,
                         .model = event.model.value_or(QString()).toStdString(),
                         .tokens = event.usage});
    // The files are not read in the order in which they were written.
    require(std::ranges::is_permutation(found, logs().events),
            "the events are those that were written");

    for (auto _ : state)
        walkAll();
    countBytes(state, usageLineBytes());
    state.counters["events"] = static_cast<double>(events.size());
}
BENCHMARK(parseAndWalk)->Unit(benchmark::kMicrosecond);

/// Events of two models of each tool over 40 days, every fourth with a limit.
std::vector<UsageEvent> makeEvents(std::int64_t count)
{
    const std::array models{QStringLiteral("claude-opus-4-5"), QStringLiteral("gpt-5.1-codex")};
    std::vector<UsageEvent> events;
    for (std::int64_t i = 0; i < count; ++i) {
        UsageEvent event{.provider = allProviders[static_cast<std::size_t>(i % 3)],
                         .date = now - std::chrono::seconds{i * 7'919 % (40 * 86'400)},
                         .model = models[static_cast<std::size_t>(i % 2)],
                         .usage = {.inputTokens = i % 97, .cacheReadTokens = i % 9'973}};
        if (i % 4 == 0)
            event.rateLimits.push_back({.usedPercent = static_cast<double>(i % 100) / 100,
                                        .windowMinutes = i % 8 == 0 ? 300 : 10'080,
                                        .percentKnown = true});
        events.push_back(std::move(event));
    }
    return events;
}

void aggregate(benchmark::State &state)
{
    const QTimeZone zone = QTimeZone::utc();
    const std::vector<UsageEvent> events = makeEvents(state.range(0));
    const auto build = [&] {
        SnapshotBuilder builder(now, zone);
        for (const UsageEvent &event : events)
            builder.add(event, 0);
        return builder.build(defaultBudgets());
    };

    for (const WindowUsageSummary &summary : build().summaries) {
        for (const ProviderUsageSummary &provider : summary.providers) {
            TokenUsage sum;
            std::optional<UsageEvent> newest;
            for (const UsageEvent &event : events) {
                if (event.provider != provider.provider || event.date < summary.startDate
                    || event.date > summary.endDate)
                    continue;
                sum = sum + event.usage;
                const auto minutes = factsOf(summary.window).limitMinutes;
                if (!event.rateLimits.empty() && minutes
                    && event.rateLimits.front().windowMinutes == minutes
                    && (!newest || event.date >= newest->date))
                    newest = event;
            }
            require(provider.tokens == sum, "the sums are those of the events");
            require(provider.rateLimit
                        == (newest ? std::optional{newest->rateLimits.front()} : std::nullopt),
                    "the newest limit is shown");
        }
    }

    for (auto _ : state)
        benchmark::DoNotOptimize(build());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(aggregate)->Arg(100'000)->Arg(300'000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
