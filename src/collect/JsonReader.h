#pragma once

#include <simdjson.h>

#include <optional>
#include <string>
#include <string_view>

namespace tallyglass {

/// Parses one JSON value after the other, reusing its buffers. A value lives until the next call.
class JsonReader
{
public:
    /// Nothing for what is not an object or array, or not JSON.
    ///
    /// Real logs hold two things that the parser refuses although only one field suffers: half of a
    /// surrogate pair, which is read as U+FFFD, and a number beyond 64 bits, which is read as 0.
    ///
    /// \a text must be readable for simdjson::SIMDJSON_PADDING bytes beyond its end.
    std::optional<simdjson::dom::element> parse(std::string_view text);

private:
    simdjson::dom::parser m_parser;
    std::string m_mended;
};

} // namespace tallyglass
