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

/// The table's places by a hash of the names that no two of them share, so that a key is compared
/// with one name at most.
class PlacesByHash
{
public:
    static constexpr std::uint8_t nothing = 0xff;
    static constexpr std::size_t shortest = 4; ///< so many characters are hashed at either end

    consteval PlacesByHash()
    {
        m_places.fill(nothing);
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            std::uint8_t &place = m_places[hash(fieldNames[i])];
            if (fieldNames[i].size() < shortest || place != nothing)
                throw "choose another multiplier"; // Reached while compiling only.
            place = static_cast<std::uint8_t>(i);
        }
    }

    /// Where \a name stands if it stands anywhere. It must not be shorter than the shortest.
    constexpr std::uint8_t find(std::string_view name) const { return m_places[hash(name)]; }

private:
    static constexpr std::uint32_t fourCharacters(const char *at)
    {
        std::uint32_t value = 0;
        for (int i = 3; i >= 0; --i)
            value = value << 8 | static_cast<std::uint8_t>(at[i]);
        return value;
    }

    static constexpr std::size_t hash(std::string_view name)
    {
        // Found by trying at random.
        constexpr std::uint32_t multiplier = 0xd01ad8d3;
        const auto size = static_cast<std::uint32_t>(name.size());
        const std::uint32_t last = fourCharacters(name.data() + name.size() - shortest) ^ size;
        return (fourCharacters(name.data()) + last) * multiplier >> 24;
    }

    std::array<std::uint8_t, 256> m_places{};
};

inline constexpr PlacesByHash placesByHash;

} // namespace detail

constexpr std::optional<std::size_t> FieldKey::find(std::string_view name)
{
    if (name.size() < detail::PlacesByHash::shortest)
        return std::nullopt;
    const std::uint8_t place = detail::placesByHash.find(name);
    const bool isKnown = place != detail::PlacesByHash::nothing && fieldNames[place] == name;
    return isKnown ? std::optional<std::size_t>{place} : std::nullopt;
}

} // namespace tallyglass
