#include "collect/JsonReader.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace tallyglass {

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Replaces what the parser refuses although it is JSON, by something of the same length.
class Mender
{
public:
    explicit Mender(std::string &text)
        : m_text(text)
    {
    }

    /// Whether anything was replaced.
    bool mend()
    {
        for (m_at = 0; m_at < m_text.size();) {
            if (m_text[m_at] == '"')
                passString();
            else if (isDigit(m_text[m_at]) || m_text[m_at] == '-')
                passNumber();
            else
                ++m_at;
        }
        return m_hasMended;
    }

private:
    static constexpr std::size_t escapeLength = 6; // \uD83D

    /// The code unit of an escape "\uD83D" at \a at, nothing for anything else.
    std::optional<unsigned> escapedUnit(std::size_t at) const
    {
        if (at + escapeLength > m_text.size() || m_text[at] != '\\' || m_text[at + 1] != 'u')
            return std::nullopt;
        unsigned unit = 0;
        const char *const end = m_text.data() + at + escapeLength;
        const auto [stop, error] = std::from_chars(m_text.data() + at + 2, end, unit, 16);
        return error == std::errc() && stop == end ? std::optional{unit} : std::nullopt;
    }

    static bool isHighSurrogate(unsigned unit) { return unit >= 0xd800 && unit < 0xdc00; }
    static bool isLowSurrogate(unsigned unit) { return unit >= 0xdc00 && unit < 0xe000; }

    void passEscape()
    {
        const auto unit = escapedUnit(m_at);
        if (!unit) {
            m_at += 2;
            return;
        }
        const auto next = escapedUnit(m_at + escapeLength);
        if (isHighSurrogate(*unit) && next && isLowSurrogate(*next)) {
            m_at += 2 * escapeLength;
            return;
        }
        if (isHighSurrogate(*unit) || isLowSurrogate(*unit)) {
            m_text.replace(m_at, escapeLength, "\\ufffd");
            m_hasMended = true;
        }
        m_at += escapeLength;
    }

    void passString()
    {
        ++m_at;
        while (m_at < m_text.size() && m_text[m_at] != '"') {
            if (m_text[m_at] == '\\')
                passEscape();
            else
                ++m_at;
        }
        ++m_at;
    }

    std::size_t passDigits()
    {
        const std::size_t start = m_at;
        while (m_at < m_text.size() && isDigit(m_text[m_at]))
            ++m_at;
        return m_at - start;
    }

    /// Passes one number. Its digits are replaced only when it is written as JSON wants it: a
    /// number that is wrong for another reason must stay wrong.
    void passNumber()
    {
        const std::size_t start = m_at;
        if (m_text[m_at] == '-')
            ++m_at;
        const bool hasLeadingZero = m_at < m_text.size() && m_text[m_at] == '0';
        const std::size_t wholeDigits = passDigits();
        bool isWellFormed = wholeDigits > 0 && !(hasLeadingZero && wholeDigits > 1);
        bool isInteger = true;
        if (m_at < m_text.size() && m_text[m_at] == '.') {
            isInteger = false;
            ++m_at;
            isWellFormed = passDigits() > 0 && isWellFormed;
        }
        if (m_at < m_text.size() && (m_text[m_at] == 'e' || m_text[m_at] == 'E')) {
            isInteger = false;
            ++m_at;
            if (m_at < m_text.size() && (m_text[m_at] == '+' || m_text[m_at] == '-'))
                ++m_at;
            isWellFormed = passDigits() > 0 && isWellFormed;
        }
        if (isWellFormed && !fits(start, isInteger)) {
            m_text.replace(start, m_at - start, m_at - start, ' ');
            m_text[start] = '0';
            m_hasMended = true;
        }
    }

    bool fits(std::size_t start, bool isInteger) const
    {
        if (!isInteger)
            return std::isfinite(std::strtod(m_text.c_str() + start, nullptr));
        std::int64_t value = 0;
        const auto result = std::from_chars(m_text.data() + start, m_text.data() + m_at, value);
        return result.ec == std::errc();
    }

    std::string &m_text;
    std::size_t m_at = 0;
    bool m_hasMended = false;
};

} // namespace

std::optional<simdjson::dom::element> JsonReader::parse(std::string_view text)
{
    constexpr bool copyFirst = false; // The caller's text is padded already.
    auto parsed = m_parser.parse(text.data(), text.size(), copyFirst);
    if (parsed.error() == simdjson::STRING_ERROR || parsed.error() == simdjson::NUMBER_ERROR
        || parsed.error() == simdjson::TAPE_ERROR) {
        m_mended.reserve(text.size() + simdjson::SIMDJSON_PADDING);
        m_mended.assign(text);
        if (Mender(m_mended).mend())
            parsed = m_parser.parse(m_mended.data(), m_mended.size(), copyFirst);
    }

    simdjson::dom::element value;
    if (parsed.get(value) != simdjson::SUCCESS || !(value.is_object() || value.is_array()))
        return std::nullopt;
    return value;
}

} // namespace tallyglass
