#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace tallyglass {

/// A bit for each lane of the result of a comparison, that of the first lane being the lowest.
/// \a lanes is a vector of at most 64 bytes, each of them 0xff or 0.
template<typename Lanes>
[[gnu::always_inline]] inline std::uint64_t laneBits(const Lanes &lanes)
{
#ifdef __clang__
    using Booleans = bool __attribute__((ext_vector_type(sizeof(Lanes))));
    const auto booleans = __builtin_convertvector(lanes, Booleans);
    if constexpr (sizeof(Lanes) == sizeof(std::uint64_t) * 8)
        return std::bit_cast<std::uint64_t>(booleans);
    else if constexpr (sizeof(Lanes) == sizeof(std::uint32_t) * 8)
        return std::bit_cast<std::uint32_t>(booleans);
    else
        return std::bit_cast<std::uint16_t>(booleans);
#else
    std::uint64_t bits = 0;
    for (std::size_t lane = 0; lane < sizeof(Lanes); ++lane)
        bits |= std::uint64_t{lanes[lane] != 0} << lane;
    return bits;
#endif
}

} // namespace tallyglass
