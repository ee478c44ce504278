#pragma once

#include <cstddef>

namespace tallyglass {

/// How far the scans may read beyond the text that they are given.
inline constexpr std::size_t scanPadding = 160; // bytes

/// Finds, at or after \a from, the first position that can belong to a record with usage; \a size
/// when there is none.
///
/// A record counts only through a member that is called "…_tokens", "rate_limits",
/// "rate_limit_info" or "modelMetrics". Written plainly, such a name shows as one of three shapes;
/// or else it holds an escaped letter or underscore, which is a fourth. Four lines of five show
/// none, and need no JSON parser.
///
/// \a text must be readable for scanPadding bytes beyond \a size.
std::size_t findUsageMarker(const char *text, std::size_t from, std::size_t size);

/// The position after the last line feed in the first \a size bytes, 0 when there is none.
std::size_t afterLastLineFeed(const char *text, std::size_t size);

} // namespace tallyglass
