#pragma once

#include "json/FieldNames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tallyglass {

/// What the name of a field with usage shows when it is written plainly, as far as the scan
/// compares it: \c begin is where a marker begins.
struct UsageMarker
{
    std::string_view before;
    std::string_view begin; ///< at most eight characters

    /// \a text is a name and the quote behind it.
    constexpr bool isIn(std::string_view text) const
    {
        for (std::size_t at = text.find(begin); at != std::string_view::npos;
             at = text.find(begin, at + 1)) {
            if (text.substr(0, at).ends_with(before))
                return true;
        }
        return false;
    }
};

inline constexpr std::array<UsageMarker, 3> usageMarkers{
    {{"", "_tokens\""}, {"rate", "_limit"}, {"", "Metrics\""}}};

/// Whether the scan finds a record by a field of this name.
consteval bool showsUsageMarker(FieldKey key)
{
    constexpr std::size_t most = 32;
    std::array<char, most + 1> quoted{};
    const std::string_view name = key.name();
    *std::ranges::copy(name, quoted.begin()).out = '"';
    return std::ranges::any_of(usageMarkers, [&](const UsageMarker &marker) {
        return marker.isIn({quoted.data(), name.size() + 1});
    });
}

template<std::size_t count>
consteval bool allShowUsageMarkers(const std::array<FieldKey, count> &keys)
{
    return std::ranges::all_of(keys, [](FieldKey key) { return showsUsageMarker(key); });
}

} // namespace tallyglass
