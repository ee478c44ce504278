#pragma once

#include "json/JsonValue.h"

#include <span>
#include <string>

namespace tallyglass {

/// Parses one JSON text after the other, reusing its memory. Checks all of it, and keeps what
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

    /// Keeps the objects that have one of the \a wanted fields, and what these stand in.
    explicit JsonReader(FieldSet wanted)
        : m_wanted(wanted)
    {
    }

    /// Null for what is not an object or an array, is not JSON, or is deeper than allowed. The
    /// value lives until the next call. \a text must be UTF-8; strings are decoded in place, so it
    /// is used up. Throws std::bad_alloc when the values do not fit into memory.
    const JsonValue *parse(std::span<char> text);

    /// The same of a text that stays as it is. Null also when it is not UTF-8.
    const JsonValue *parseCopy(std::string_view text);

private:
    FieldSet m_wanted;
    JsonValues m_values;
    std::string m_copy;
};

} // namespace tallyglass
