#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
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
     "type", "info", "last_token_usage", "latest_token_usage_record",
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

    /// The index of \a name in the table, none for a name that no reader asks for. The name must be
    /// readable for 32 bytes.
    static std::size_t find(std::string_view name);
    static constexpr std::size_t none = 63;

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

/// Some of the names.
class FieldSet
{
public:
    template<std::size_t... counts>
    constexpr explicit FieldSet(const std::array<FieldKey, counts> &...keys)
    {
        const auto add = [this](FieldKey key) { m_bits |= std::uint64_t{1} << key.index(); };
        (std::ranges::for_each(keys, add), ...);
    }

    constexpr bool hasAnyOf(std::uint64_t bits) const { return (m_bits & bits) != 0; }

private:
    std::uint64_t m_bits = 0;
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
inline constexpr std::array<FieldKey, 5> copilotCounterKeys{
    "inputTokens", "outputTokens", "reasoningTokens", "cacheWriteTokens", "cacheReadTokens"};

/// What makes an event. An object that has none of these, nor holds one that does, gives none.
inline constexpr FieldSet countingFields(counterKeys, copilotCounterKeys, usedShareKeys, resetKeys,
                                         windowLengthKeys);

namespace detail {

/// The names by a hash that no two of them share, so that a name is compared with one at most.
class NamesByHash
{
public:
    static constexpr std::size_t shortest = 4; ///< so many characters are hashed at either end
    static constexpr std::size_t longest = 32;

    struct Entry
    {
        std::array<char, longest> name{}; ///< with zeros behind
        std::uint8_t size = 0;
        std::uint8_t index = 0; ///< in the table
    };

    consteval NamesByHash()
    {
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            const std::string_view name = fieldNames[i];
            Entry &entry = m_entries[hash(name.data(), name.size())];
            if (name.size() < shortest || name.size() > longest || entry.size > 0)
                throw "choose another multiplier"; // Reached while compiling only.
            std::ranges::copy(name, entry.name.begin());
            entry.size = static_cast<std::uint8_t>(name.size());
            entry.index = static_cast<std::uint8_t>(i);
        }
    }

    /// The entry that has the name if any has. The name must not be shorter than the shortest.
    constexpr const Entry &entry(const char *name, std::size_t size) const
    {
        return m_entries[hash(name, size)];
    }

private:
    static constexpr std::uint32_t fourCharacters(const char *at)
    {
        std::uint32_t value = 0;
        for (int i = 3; i >= 0; --i)
            value = value << 8 | static_cast<std::uint8_t>(at[i]);
        return value;
    }

    static constexpr std::size_t hash(const char *name, std::size_t size)
    {
        // Found by trying at random.
        constexpr std::uint32_t multiplier = 0x5b48368f;
        const auto last = fourCharacters(name + size - shortest) ^ static_cast<std::uint32_t>(size);
        return (fourCharacters(name) + last) * multiplier >> 24;
    }

    std::array<Entry, 256> m_entries{};
};

inline constexpr NamesByHash namesByHash;

/// As many bytes that are set as a name is long, from a position in here on.
inline constexpr auto nameMask = [] {
    std::array<std::uint8_t, 2 * NamesByHash::longest> mask{};
    std::ranges::fill(mask.begin(), mask.begin() + NamesByHash::longest, std::uint8_t{0xff});
    return mask;
}();

} // namespace detail

inline std::size_t FieldKey::find(std::string_view name)
{
    using Names = detail::NamesByHash;
    if (name.size() < Names::shortest)
        return none;
    const Names::Entry &entry = detail::namesByHash.entry(name.data(), name.size());
    if (entry.size != name.size())
        return none;
    // Without a branch for each length, which would often be mispredicted.
    using Block = std::uint64_t __attribute__((vector_size(16)));
    std::array<Block, 2> given{};
    std::array<Block, 2> known{};
    std::array<Block, 2> mask{};
    std::memcpy(&given, name.data(), sizeof given);
    std::memcpy(&known, entry.name.data(), sizeof known);
    std::memcpy(&mask, detail::nameMask.data() + Names::longest - entry.size, sizeof mask);
    const Block different = ((given[0] ^ known[0]) & mask[0]) | ((given[1] ^ known[1]) & mask[1]);
    return (different[0] | different[1]) == 0 ? entry.index : none;
}

} // namespace tallyglass
