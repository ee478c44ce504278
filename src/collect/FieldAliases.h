#pragma once

#include "collect/UsageMarkers.h"
#include "json/FieldNames.h"

namespace tallyglass {

// Where a reader has a choice, the first key that yields a usable value wins.
inline constexpr std::array<FieldKey, 7> timestampKeys{
    "timestamp", "created_at", "createdAt", "date", "time", "started_at", "request_start_time"};
inline constexpr std::array<FieldKey, 3> modelKeys{"model", "model_name", "modelName"};
inline constexpr std::array<FieldKey, 4> resetKeys{"resetsAt", "resets_at", "reset_at",
                                                   "resetDate"};
inline constexpr std::array<FieldKey, 2> usedShareKeys{"used_percent", "used_percentage"};
inline constexpr std::array<FieldKey, 4> windowLengthKeys{"window_minutes", "windowMinutes",
                                                          "duration_minutes", "durationMinutes"};
inline constexpr std::array<FieldKey, 6> windowNameKeys{
    "window", "period", "name", "limit_name", "rateLimitType", "rate_limit_type"};

/// The token counters, each beside its alias, in the order of the table.
inline constexpr std::array<FieldKey, 9> counterKeys{"input_tokens",
                                                     "prompt_tokens",
                                                     "output_tokens",
                                                     "completion_tokens",
                                                     "cache_creation_input_tokens",
                                                     "cache_creation_tokens",
                                                     "cache_read_input_tokens",
                                                     "cache_read_tokens",
                                                     "total_tokens"};
/// Only in these are limits looked for.
inline constexpr std::array<FieldKey, 2> limitContainerKeys{"rate_limits", "rate_limit_info"};
/// Only in this are the counters of a Copilot session looked for.
inline constexpr std::array<FieldKey, 1> copilotMetricsKey{"modelMetrics"};
inline constexpr std::array<FieldKey, 5> copilotCounterKeys{
    "inputTokens", "outputTokens", "reasoningTokens", "cacheWriteTokens", "cacheReadTokens"};

// A field with usage that the scan does not find would be lost without a word.
static_assert(allShowUsageMarkers(counterKeys) && allShowUsageMarkers(limitContainerKeys)
              && allShowUsageMarkers(copilotMetricsKey));

/// What makes an event. An object that has none of these, nor holds one that does, gives none.
inline constexpr FieldSet countingFields(counterKeys, copilotCounterKeys, usedShareKeys, resetKeys,
                                         windowLengthKeys);

} // namespace tallyglass
