#include "collect/TextScan.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tallyglass {

namespace {

/// 32 bytes in one register of the widest kind that is common, or in two of the plain kind: the
/// compiler splits it where it must. Comparisons give 0xff in the lanes that match.
using Block = std::uint8_t __attribute__((vector_size(32)));

/// Blocks examined before the first test for a match.
constexpr std::size_t blocksPerStep = 2;
constexpr std::size_t stepSize = blocksPerStep * sizeof(Block);

/// The furthest lane that a test looks at, from the place where a marker begins.
constexpr std::size_t lookAhead = 7;
static_assert(stepSize + lookAhead <= scanPadding);

[[gnu::always_inline]] inline Block load(const char *at)
{
    Block block;
    std::memcpy(&block, at, sizeof block);
    return block;
}

/// Lanes at which a marker may begin. Two or three characters of each are compared: few enough to
/// be fast, and enough to let through hardly anything else. Comparing the first two alone is ten
/// times slower on source code, where "_t" and "_l" are everywhere.
[[gnu::always_inline]] inline Block possibleMarkers(const char *at)
{
    const Block first = load(at);
    const Block fourth = load(at + 3);
    const Block fifth = load(at + 4);
    const Block eighth = load(at + lookAhead);

    const auto quoted = ((first == '_') | (first == 'M')) & (eighth == '"'); // _tokens" Metrics"
    const auto limit = (first == '_') & (fourth == 'm') & (fifth == 'i'); // rate_limit
    const auto escape = (first == '\\') & (fourth == '0') & ((fifth & 0xfc) == '4'); // \u0061
    return Block(quoted | limit | escape);
}

[[gnu::always_inline]] inline bool anySet(Block block)
{
    std::array<std::uint64_t, 4> words{};
    static_assert(sizeof words == sizeof block);
    std::memcpy(words.data(), &block, sizeof block);
    return ((words[0] | words[1]) | (words[2] | words[3])) != 0;
}

bool isMarker(const char *text, std::size_t at, std::size_t size)
{
    const std::string_view rest(text + at, size - at);
    if (rest.starts_with("_tokens\"") || rest.starts_with("Metrics\""))
        return true;
    if (rest.starts_with("\\u00"))
        return rest.size() > 4 && rest[4] >= '4' && rest[4] <= '7';
    return at >= 4 && std::string_view(text + at - 4, size - at + 4).starts_with("rate_limit");
}

/// The first step, at or after \a step, in which a marker may begin. Calls nothing, so that the
/// characters to compare with stay in registers: 9.5 -> 10.4 GB/s, bench/micro scan.
[[gnu::always_inline]] inline std::size_t possibleStep(const char *text, std::size_t step,
                                                       std::size_t size)
{
    for (; step < size; step += stepSize) {
        Block possible = possibleMarkers(text + step);
        for (std::size_t block = 1; block < blocksPerStep; ++block)
            possible |= possibleMarkers(text + step + block * sizeof(Block));
        if (anySet(possible))
            break;
    }
    return step;
}

[[gnu::always_inline]] inline std::size_t findIn(const char *text, std::size_t from,
                                                 std::size_t size)
{
    for (std::size_t step = possibleStep(text, from, size); step < size;
         step = possibleStep(text, step + stepSize, size)) {
        const std::size_t end = std::min(step + stepSize, size);
        for (std::size_t at = step; at < end; ++at) {
            const char first = text[at];
            if ((first == '_' || first == 'M' || first == '\\') && isMarker(text, at, size))
                return at;
        }
    }
    return size;
}

#ifdef __x86_64__
// Builds must run on every x86-64; half of the running ones in use have this since 2013.
[[gnu::target("avx2")]] std::size_t findWithAvx2(const char *text, std::size_t from,
                                                 std::size_t size)
{
    return findIn(text, from, size);
}
#endif

} // namespace

std::size_t findUsageMarker(const char *text, std::size_t from, std::size_t size)
{
#ifdef __x86_64__
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    if (hasAvx2)
        return findWithAvx2(text, from, size);
#endif
    return findIn(text, from, size);
}

std::size_t afterLastLineFeed(const char *text, std::size_t size)
{
    while (size >= sizeof(Block) && !anySet(Block(load(text + size - sizeof(Block)) == '\n')))
        size -= sizeof(Block);
    while (size > 0 && text[size - 1] != '\n')
        --size;
    return size;
}

} // namespace tallyglass
