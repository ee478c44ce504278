#pragma once

#include "model/FatalFault.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace tallyglass {

/// Sum that ends the program on overflow: a wrapped token count would be a silent lie.
constexpr std::int64_t checkedSum(std::int64_t a, std::int64_t b)
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum))
        stopProgram("a token count exceeds 64 bits");
    return sum;
}

/// Token counters of one event, or of a sum of events. Unit: tokens.
struct TokenUsage
{
    std::int64_t inputTokens = 0;
    std::int64_t outputTokens = 0;
    std::int64_t cacheCreationTokens = 0; ///< written to a prompt cache
    std::int64_t cacheReadTokens = 0; ///< served from a prompt cache
    std::optional<std::int64_t> explicitTotalTokens; ///< a total that the log itself states

    bool operator==(const TokenUsage &) const = default;

    constexpr std::int64_t counterSum() const
    {
        return checkedSum(checkedSum(inputTokens, outputTokens),
                          checkedSum(cacheCreationTokens, cacheReadTokens));
    }

    /// The larger of the counters' sum and the stated total.
    constexpr std::int64_t totalTokens() const
    {
        return std::max(counterSum(), explicitTotalTokens.value_or(0));
    }
};

constexpr TokenUsage operator+(const TokenUsage &a, const TokenUsage &b)
{
    const auto total =
        checkedSum(a.explicitTotalTokens.value_or(0), b.explicitTotalTokens.value_or(0));
    return {
        .inputTokens = checkedSum(a.inputTokens, b.inputTokens),
        .outputTokens = checkedSum(a.outputTokens, b.outputTokens),
        .cacheCreationTokens = checkedSum(a.cacheCreationTokens, b.cacheCreationTokens),
        .cacheReadTokens = checkedSum(a.cacheReadTokens, b.cacheReadTokens),
        .explicitTotalTokens = total < 1 ? std::nullopt : std::optional{total},
    };
}

} // namespace tallyglass
