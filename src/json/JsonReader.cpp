#include "json/JsonReader.h"

#include "json/LaneBits.h"

#include <QByteArrayView>
#include <simdjson.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <new>
#include <optional>
#include <utility>

namespace tallyglass {

namespace {

using Kind = JsonValue::Kind;

/// Holds most names and short texts.
using Block = std::uint8_t __attribute__((vector_size(16)));
static_assert(sizeof(Block) <= JsonReader::padding);

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isHighSurrogate(unsigned unit)
{
    return unit >= 0xd800 && unit < 0xdc00;
}

bool isLowSurrogate(unsigned unit)
{
    return unit >= 0xdc00 && unit < 0xe000;
}

/// Of a hexadecimal digit; below 0 for anything else.
int digitValue(char digit)
{
    if (isDigit(digit))
        return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// The code unit that the four digits at \a digits write, nothing when they are none.
std::optional<unsigned> codeUnit(const char *digits)
{
    unsigned unit = 0;
    for (const char digit : std::string_view(digits, 4)) {
        const int value = digitValue(digit);
        if (value < 0)
            return std::nullopt;
        unit = unit << 4 | static_cast<unsigned>(value);
    }
    return unit;
}

/// What may stand behind a backslash, but for the "u" of a code unit, and what it stands for.
constexpr auto simpleEscapes = [] {
    std::array<char, 256> meanings{};
    for (const auto &[escape, meaning] : std::to_array<std::pair<char, char>>({{'"', '"'},
                                                                               {'\\', '\\'},
                                                                               {'/', '/'},
                                                                               {'b', '\b'},
                                                                               {'f', '\f'},
                                                                               {'n', '\n'},
                                                                               {'r', '\r'},
                                                                               {'t', '\t'}}))
        meanings[static_cast<std::uint8_t>(escape)] = meaning;
    return meanings;
}();

char meaningOf(char escape)
{
    return simpleEscapes[static_cast<std::uint8_t>(escape)];
}

char *appendUtf8(char *to, unsigned codePoint)
{
    const auto put = [&to](unsigned byte) { *to++ = static_cast<char>(byte); };
    if (codePoint < 0x80) {
        put(codePoint);
        return to;
    }
    if (codePoint < 0x800) {
        put(0xc0 | codePoint >> 6);
    } else {
        if (codePoint < 0x10000) {
            put(0xe0 | codePoint >> 12);
        } else {
            put(0xf0 | codePoint >> 18);
            put(0x80 | (codePoint >> 12 & 0x3f));
        }
        put(0x80 | (codePoint >> 6 & 0x3f));
    }
    put(0x80 | (codePoint & 0x3f));
    return to;
}

/// Reads the sound escape "\u…" whose digits begin at \a from, together with a second one that
/// completes a surrogate pair, and moves \a from behind them.
unsigned takeCodePoint(const char *&from)
{
    const unsigned unit = codeUnit(from).value_or(0);
    from += 4;
    if (isHighSurrogate(unit) && from[0] == '\\' && from[1] == 'u') {
        const unsigned low = codeUnit(from + 2).value_or(0);
        if (isLowSurrogate(low)) {
            from += 6;
            return 0x10000 + ((unit - 0xd800) << 10) + (low - 0xdc00);
        }
    }
    return isHighSurrogate(unit) || isLowSurrogate(unit) ? 0xfffd : unit;
}

/// Decodes a string where it stands, which has room: no character is longer than its escape. Gives
/// its length.
std::size_t decode(char *start, const char *end)
{
    char *to = start;
    for (const char *from = start; from != end;) {
        if (*from != '\\') {
            *to++ = *from++;
            continue;
        }
        const char escape = from[1];
        from += 2;
        if (escape == 'u')
            to = appendUtf8(to, takeCodePoint(from));
        else
            *to++ = meaningOf(escape);
    }
    return static_cast<std::size_t>(to - start);
}

} // namespace

/// Parses one value after the other. Each function is given the position where what it parses or
/// skips begins and gives the one behind it; null: this is not JSON.
///
/// A zero must stand behind the text. It begins nothing, so no function looks for the end.
class JsonParser
{
public:
    JsonParser(JsonValues &values, FieldSet wanted)
        : m_values(values)
        , m_wanted(wanted)
    {
    }

    /// An object or array, and the white space around it.
    char *parseDocument(char *at)
    {
        at = skipWhiteSpace(at);
        if (isContainer(at))
            at = parseContainer(at, m_values.append({}, FieldKey::none));
        else
            at = nullptr;
        return at ? skipWhiteSpace(at) : nullptr;
    }

private:
    static bool isContainer(const char *start) { return *start == '{' || *start == '['; }

    [[gnu::always_inline]] static char *skipWhiteSpace(char *at)
    {
        while (*at == ' ' || *at == '\n' || *at == '\r' || *at == '\t')
            ++at;
        return at;
    }

    /// \a index is that of the container among the values, which may move in memory.
    char *parseContainer(char *at, std::size_t index)
    {
        return *at == '{' ? parseObject(at, index) : parseArray(at, index);
    }

    char *parseObject(char *at, std::size_t index)
    {
        m_values[index].setObject(0, 0);
        at = skipWhiteSpace(at + 1);
        if (*at == '}')
            return at + 1;
        if (m_depth == JsonReader::deepestNesting)
            return nullptr;
        ++m_depth;

        std::uint64_t fields = 0;
        bool counts = false; // by an object or array in it
        for (;; at = skipWhiteSpace(at + 1)) {
            std::string_view name;
            at = *at == '"' ? parseString(at, &name) : nullptr;
            if (!at)
                return nullptr;
            at = skipWhiteSpace(at);
            if (*at != ':')
                return nullptr;
            at = skipWhiteSpace(at + 1);
            const std::size_t field = FieldKey::find(name);
            fields |= std::uint64_t{1} << field;
            // A member that nobody knows may still replace one before it.
            const bool isKept = field != FieldKey::none || counts;
            if (isContainer(at)) {
                const std::size_t member = m_values.append(name, field);
                at = parseContainer(at, member);
                counts |= !holdsNothing(member);
                if (!isKept && holdsNothing(member))
                    m_values.cutTo(member);
            } else if (isKept) {
                at = parseScalar(at, m_values[m_values.append(name, field)]);
            } else {
                at = skipScalar(at);
            }
            if (!at)
                return nullptr;
            at = skipWhiteSpace(at);
            if (*at != ',')
                break;
        }

        if (counts || m_wanted.hasAnyOf(fields))
            m_values[index].setObject(fields, sizeOf(index));
        else
            m_values.cutTo(index + 1);
        --m_depth;
        return *at == '}' ? at + 1 : nullptr;
    }

    char *parseArray(char *at, std::size_t index)
    {
        m_values[index].setArray(0);
        at = skipWhiteSpace(at + 1);
        if (*at == ']')
            return at + 1;
        if (m_depth == JsonReader::deepestNesting)
            return nullptr;
        ++m_depth;

        for (;; at = skipWhiteSpace(at + 1)) {
            if (isContainer(at)) {
                const std::size_t element = m_values.append({}, FieldKey::none);
                at = parseContainer(at, element);
                if (holdsNothing(element))
                    m_values.cutTo(element);
            } else {
                at = skipScalar(at);
            }
            if (!at)
                return nullptr;
            at = skipWhiteSpace(at);
            if (*at != ',')
                break;
        }

        m_values[index].setArray(sizeOf(index));
        --m_depth;
        return *at == ']' ? at + 1 : nullptr;
    }

    /// Whether the object or array that was parsed last is without contents.
    bool holdsNothing(std::size_t index) const { return sizeOf(index) == 0; }

    std::size_t sizeOf(std::size_t index) const { return m_values.size() - index - 1; }

    [[gnu::always_inline]] static char *parseScalar(char *at, JsonValue &value)
    {
        if (*at == '"') {
            std::string_view text;
            at = parseString(at, &text);
            value.setString(text);
            return at;
        }
        if (*at == 'n')
            value.set(JsonValue::Kind::Null);
        return isDigit(*at) || *at == '-' ? parseNumber(at, value) : skipLiteral(at);
    }

    [[gnu::always_inline]] static char *skipScalar(char *at)
    {
        if (*at == '"')
            return parseString(at, nullptr);
        bool isInteger = true;
        return isDigit(*at) || *at == '-' ? skipNumber(at, isInteger) : skipLiteral(at);
    }

    static char *skipLiteral(char *at)
    {
        for (const std::string_view literal : {"true", "false", "null"}) {
            if (std::memcmp(at, literal.data(), literal.size()) == 0)
                return at + literal.size();
        }
        return nullptr;
    }

    /// \a text is null when nobody asks for it.
    [[gnu::always_inline]] static char *parseString(char *at, std::string_view *text)
    {
        char *const start = at + 1;
        char *end = skipPlain(start);
        std::size_t size = static_cast<std::size_t>(end - start);
        if (*end != '"') {
            end = skipEscapes(end);
            if (!end)
                return nullptr;
            if (text)
                size = decode(start, end);
        }
        if (text)
            *text = std::string_view(start, size);
        return end + 1;
    }

    /// Skips the characters of a string up to a quote, a backslash or one that no string has.
    [[gnu::always_inline]] static char *skipPlain(char *at)
    {
        for (;;) {
            Block block;
            std::memcpy(&block, at, sizeof block);
            const std::uint64_t others =
                laneBits((block == '"') | (block == '\\') | (block < 0x20));
            if (others != 0)
                return at + std::countr_zero(others);
            at += sizeof block;
        }
    }

    /// Skips the rest of a string up to the quote at its end.
    [[gnu::noinline]] static char *skipEscapes(char *at)
    {
        while (*at == '\\') {
            const char escape = at[1];
            if (meaningOf(escape) != 0)
                at += 2;
            else if (escape == 'u' && codeUnit(at + 2))
                at += 6;
            else
                return nullptr;
            at = skipPlain(at);
        }
        return *at == '"' ? at : nullptr;
    }

    [[gnu::always_inline]] static char *skipDigits(char *at)
    {
        while (isDigit(*at))
            ++at;
        return at;
    }

    [[gnu::always_inline]] static char *skipNumber(char *at, bool &isInteger)
    {
        char *const whole = *at == '-' ? at + 1 : at;
        at = skipDigits(whole);
        if (at == whole || (*whole == '0' && at > whole + 1))
            return nullptr;
        if (*at == '.') {
            isInteger = false;
            char *const fraction = at + 1;
            at = skipDigits(fraction);
            if (at == fraction)
                return nullptr;
        }
        if (*at == 'e' || *at == 'E') {
            isInteger = false;
            ++at;
            char *const exponent = *at == '+' || *at == '-' ? at + 1 : at;
            at = skipDigits(exponent);
            if (at == exponent)
                return nullptr;
        }
        return at;
    }

    static char *parseNumber(char *at, JsonValue &value)
    {
        bool isInteger = true;
        char *const end = skipNumber(at, isInteger);
        if (!end)
            return nullptr;
        std::int64_t integer = 0;
        if (isInteger) {
            if (std::from_chars(at, end, integer).ec != std::errc())
                integer = 0;
        } else if (const double decimal = QByteArrayView(at, end).toDouble();
                   std::isfinite(decimal)) {
            value.setDecimal(decimal);
            return end;
        }
        value.setInteger(integer);
        return end;
    }

    JsonValues &m_values;
    FieldSet m_wanted;
    int m_depth = 0;
};

void JsonValues::grow()
{
    const std::size_t capacity = std::max<std::size_t>(1'024, m_capacity + m_capacity / 2);
    void *const memory = std::realloc(m_values.get(), capacity * sizeof(JsonValue));
    if (!memory)
        throw std::bad_alloc();
    static_cast<void>(m_values.release());
    m_values.reset(static_cast<JsonValue *>(memory));
    m_capacity = capacity;
}

const JsonValue *JsonReader::parse(std::span<char> text)
{
    m_values.cutTo(0);
    char *const end = text.data() + text.size();
    const char covered = std::exchange(*end, '\0');
    const bool isJson = JsonParser(m_values, m_wanted).parseDocument(text.data()) == end;
    *end = covered;
    return isJson ? &m_values[0] : nullptr;
}

const JsonValue *JsonReader::parseCopy(std::string_view text)
{
    if (!simdjson::validate_utf8(text.data(), text.size()))
        return nullptr;
    m_copy.assign(text);
    m_copy.append(padding, '\0');
    return parse({m_copy.data(), text.size()});
}

} // namespace tallyglass
