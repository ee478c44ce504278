#include "HomeGenerator.h"

#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string_view>
#include <utility>

using namespace tallyglass;
using namespace tallyglass::bench;

namespace {

constexpr std::string_view help = R"(generate-home FOLDER --size 1GiB [--seed 1] [--now SECONDS]

Writes a made-up home folder and prints, as JSON, the events that its logs hold.
SECONDS is the Unix time of the youngest record; without it, this moment.
)";

std::optional<std::int64_t> readNumber(std::string_view text)
{
    constexpr std::array<std::pair<std::string_view, int>, 3> units{
        {{"KiB", 10}, {"MiB", 20}, {"GiB", 30}}};
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const std::string_view rest = text.substr(static_cast<std::size_t>(stop - text.data()));
    if (error != std::errc() || value < 0)
        return std::nullopt;
    if (rest.empty())
        return value;
    for (const auto &[unit, shift] : units) {
        if (rest == unit)
            return value << shift;
    }
    return std::nullopt;
}

std::optional<HomeOptions> readOptions(int argc, char *argv[])
{
    HomeOptions options;
    options.now = std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (!word.starts_with("--")) {
            options.folder = word;
            continue;
        }
        const auto value = ++i < argc ? readNumber(argv[i]) : std::nullopt;
        if (!value)
            return std::nullopt;
        if (word == "--size")
            options.size = *value;
        else if (word == "--seed")
            options.seed = static_cast<std::uint64_t>(*value);
        else if (word == "--now")
            options.now = Instant{std::chrono::seconds{*value}};
        else
            return std::nullopt;
    }
    return options.folder.empty() || options.size == 0 ? std::nullopt : std::optional{options};
}

void print(const GeneratedHome &home)
{
    std::printf("{\"bytes\": %lld, \"files\": %lld, \"bytesOfUsageLines\": %lld,\n \"events\": [",
                static_cast<long long>(home.bytes), static_cast<long long>(home.files),
                static_cast<long long>(home.bytesOfUsageLines));
    const char *separator = "\n";
    for (const auto &[date, provider, model, tokens] : home.events) {
        std::printf("%s  [%lld, \"%s\", \"%s\", %lld, %lld, %lld, %lld, %lld]", separator,
                    static_cast<long long>(date.time_since_epoch().count()),
                    rawValue(provider).data(), model.c_str(),
                    static_cast<long long>(tokens.inputTokens),
                    static_cast<long long>(tokens.outputTokens),
                    static_cast<long long>(tokens.cacheCreationTokens),
                    static_cast<long long>(tokens.cacheReadTokens),
                    static_cast<long long>(tokens.explicitTotalTokens.value_or(0)));
        separator = ",\n";
    }
    std::printf("\n]}\n");
}

} // namespace

int main(int argc, char *argv[])
{
    const auto options = readOptions(argc, argv);
    if (!options) {
        std::fputs(help.data(), stderr);
        return 2;
    }
    print(generateHome(*options));
    return 0;
}
