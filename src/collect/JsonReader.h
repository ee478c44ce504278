#pragma once

#include "collect/JsonValue.h"

#include <memory>
#include <span>

namespace tallyglass {

/// Parses one JSON value after the other, reusing its memory. Checks all of it, and keeps what
/// readers ask for.
///
/// Two things that are real in logs it reads although others refuse them: half of a surrogate pair,
/// as U+FFFD, and a number beyond 64 bits, as 0.
class JsonReader
{
public:
    static constexpr int deepestNesting = 1'023;
    /// So much is read beyond the text, and its first byte is written as well, for a while.
    static constexpr std::size_t padding = 64; // bytes

    /// Null for what is not an object or an array, is not JSON, or is deeper than allowed. The
    /// value lives until the next call. \a text must be UTF-8; strings are decoded in place, so it
    /// is used up.
    const JsonValue *parse(std::span<char> text);

private:
    // Not a vector: one would clear the memory, of which hardly anything is used.
    std::unique_ptr<JsonValue[]> m_values; // NOLINT(modernize-avoid-c-arrays)
    std::size_t m_capacity = 0;
};

} // namespace tallyglass
