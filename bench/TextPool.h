#pragma once

#include "Random.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tallyglass::bench {

/// Text of the kinds that transcripts are full of, as it stands in a JSON string: escaped.
///
/// Each kind is made once and then cut from, since making a gibibyte word by word takes a minute.
class TextPool
{
public:
    explicit TextPool(Random &random);

    /// What a tool printed or read: source code, differences, build logs, prose, base64, JSON.
    void appendOutput(std::string &line, std::int64_t size, Random &random) const;
    /// What a person or a model writes.
    void appendProse(std::string &line, std::int64_t size, Random &random) const;
    void appendSource(std::string &line, std::int64_t size, Random &random) const;
    void appendBase64(std::string &line, std::int64_t size, Random &random) const;

private:
    struct Kind
    {
        std::string text;
        std::vector<std::size_t> lineStarts;
    };

    template<typename MakeLine>
    static Kind makeKind(MakeLine makeLine);
    static void append(std::string &line, const Kind &kind, std::int64_t size, Random &random);

    Kind m_source;
    Kind m_difference;
    Kind m_buildLog;
    Kind m_numberedFile;
    Kind m_prose;
    Kind m_base64;
    Kind m_json;
};

} // namespace tallyglass::bench
