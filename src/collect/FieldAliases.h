#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tallyglass {

/// Every member name that the readers know.
inline constexpr auto fieldNames = std::to_array<std::string_view>(
    {// When
     "timestamp", "created_at", "createdAt", "date", "time", "started_at", "request_start_time",
     // Who
     "model", "model_name", "modelName", "provider",
     // How much
     "usage", "input_tokens", "prompt_tokens", "output_tokens", "completion_tokens",
     "cache_creation_input_tokens", "cache_creation_tokens", "cache_read_input_tokens",
     "cache_read_tokens", "total_tokens",
     // Codex token records
     "type", "info", "last_token_usage",
     // Limits
     "rate_limits", "rate_limit_info", "used_percent", "used_percentage", "resetsAt", "resets_at",
     "reset_at", "resetDate", "window_minutes", "windowMinutes", "duration_minutes",
     "durationMinutes", "window", "period", "name", "limit_name", "rateLimitType",
     "rate_limit_type", "plan_type",
     // Copilot shutdown records
     "data", "modelMetrics", "inputTokens", "outputTokens", "reasoningTokens", "cacheWriteTokens",
     "cacheReadTokens"});

/// A name of the table; one that it lacks does not compile.
class FieldKey
{
public:
    // A key is written as the literal it is, so the conversion is meant to be implicit.
    consteval FieldKey(const char *name) // NOLINT(google-explicit-constructor)
        : m_index(indexOf(name))
    {
    }

    constexpr std::size_t index() const { return m_index; }

    /// The place of \a name in the table, nothing for a name that no reader asks for.
    static constexpr std::optional<std::size_t> find(std::string_view name);

private:
    static consteval std::size_t indexOf(std::string_view name)
    {
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            if (fieldNames[i] == name)
                return i;
        }
        throw "no such field name"; // Reached while compiling only, and an error there.
    }

    std::size_t m_index;
};

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

namespace detail {

/// The table's indexes by the length of their names: a key is compared with one or two names.
struct NamesByLength
{
    static constexpr std::size_t longest = 27;

    std::array<std::uint8_t, fieldNames.size()> order{};
    std::array<std::uint8_t, longest + 2> start{}; ///< start[n] to start[n + 1]: names of length n
};

consteval NamesByLength sortNamesByLength()
{
    NamesByLength names;
    std::uint8_t next = 0;
    for (std::size_t length = 0; length <= NamesByLength::longest; ++length) {
        names.start[length] = next;
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            if (fieldNames[i].size() == length)
                names.order[next++] = static_cast<std::uint8_t>(i);
        }
    }
    names.start[NamesByLength::longest + 1] = next;
    return names;
}

inline constexpr NamesByLength namesByLength = sortNamesByLength();
static_assert(namesByLength.start.back() == fieldNames.size(), "a name is longer than longest");
static_assert(namesByLength.start[1] == 0, "no name is empty");

} // namespace detail

constexpr std::optional<std::size_t> FieldKey::find(std::string_view name)
{
    if (name.size() > detail::NamesByLength::longest)
        return std::nullopt;
    const auto &names = detail::namesByLength;
    for (std::size_t i = names.start[name.size()]; i < names.start[name.size() + 1]; ++i) {
        // Most names differ in the first character; a call to compare the rest costs ten times
        // more.
        const std::string_view candidate = fieldNames[names.order[i]];
        if (candidate.front() == name.front() && candidate == name)
            return names.order[i];
    }
    return std::nullopt;
}

} // namespace tallyglass
