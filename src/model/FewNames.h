#pragma once

#include <algorithm>
#include <array>
#include <string_view>

namespace tallyglass {

/// Up to four names in a row of a table.
struct FewNames
{
    std::array<std::string_view, 4> names; ///< none behind the first that is empty

    constexpr auto begin() const { return names.begin(); }
    constexpr auto end() const { return std::ranges::find(names, std::string_view()); }
    constexpr bool isEmpty() const { return begin() == end(); }
    constexpr bool contains(std::string_view name) const
    {
        return std::find(begin(), end(), name) != end();
    }
};

} // namespace tallyglass
