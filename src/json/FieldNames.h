#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace tallyglass {

/// Every member name that a reader asks for.
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
     "cacheReadTokens",
     // What tells copies of the same usage
     "id", "requestId", "toolUseResult", "total_token_usage", "cached_input_tokens",
     // The answer of Claude's endpoint
     "five_hour", "seven_day", "utilization"});

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
    constexpr std::string_view name() const { return fieldNames[m_index]; }

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

namespace detail {

/// The table by a hash that no two names share, so that a name is compared with one at most.
class NamesByHash
{
public:
    static constexpr std::size_t shortest = 4; ///< so many characters are hashed at either end
    static constexpr std::string_view tooShort = "id"; ///< the one name that is shorter
    static constexpr std::size_t longest = 32;

    struct Entry
    {
        std::array<char, longest> name{}; ///< with zeros behind
        std::size_t size = 0;
    };

    /// Takes the first multiplier of a random sequence under which no two names meet. With twenty
    /// times as many slots as names every fourth does.
    consteval NamesByHash()
    {
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            if (fieldNames[i] == tooShort)
                continue;
            if (fieldNames[i].size() < shortest || fieldNames[i].size() > longest)
                throw "too short or too long for the hash"; // Reached while compiling only.
            std::ranges::copy(fieldNames[i], m_entries[i].name.begin());
            m_entries[i].size = fieldNames[i].size();
        }
        while (!fillSlots())
            m_multiplier = m_multiplier * 1'664'525 + 1'013'904'223; // of "Numerical Recipes"
    }

    /// The index of the one name that may be \a name, which must not be shorter than the shortest.
    constexpr std::size_t candidate(std::string_view name) const { return m_slots[hash(name)]; }
    constexpr const Entry &entry(std::size_t index) const { return m_entries[index]; }

private:
    static constexpr int slotBits = 10;

    consteval bool fillSlots()
    {
        m_slots.fill(FieldKey::none);
        for (std::size_t i = 0; i < fieldNames.size(); ++i) {
            if (fieldNames[i] == tooShort)
                continue;
            std::uint8_t &slot = m_slots[hash(fieldNames[i])];
            if (slot != FieldKey::none)
                return false;
            slot = static_cast<std::uint8_t>(i);
        }
        return true;
    }

    static constexpr std::uint32_t fourCharacters(const char *at)
    {
        std::uint32_t value = 0;
        for (int i = 3; i >= 0; --i)
            value = value << 8 | static_cast<std::uint8_t>(at[i]);
        return value;
    }

    constexpr std::size_t hash(std::string_view name) const
    {
        const std::uint32_t first = fourCharacters(name.data());
        const std::uint32_t last = fourCharacters(name.data() + name.size() - shortest);
        const auto size = static_cast<std::uint32_t>(name.size());
        return (first + (last ^ size)) * m_multiplier >> (32 - slotBits);
    }

    std::uint32_t m_multiplier = 1;
    std::array<std::uint8_t, 1 << slotBits> m_slots{};
    std::array<Entry, FieldKey::none + 1> m_entries{}; ///< the last stands for no name
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
        return name == Names::tooShort ? FieldKey("id").index() : none;
    const std::size_t index = detail::namesByHash.candidate(name);
    const Names::Entry &entry = detail::namesByHash.entry(index);
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
    return (different[0] | different[1]) == 0 ? index : none;
}

} // namespace tallyglass
