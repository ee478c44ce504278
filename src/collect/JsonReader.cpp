#include "collect/JsonReader.h"

#include <QByteArrayView>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace tallyglass {

namespace {

using Kind = JsonValue::Kind;

/// In the registers that every processor has.
using Block = std::uint8_t __attribute__((vector_size(16)));
static_assert(sizeof(Block) <= JsonReader::padding);

#ifdef __SSE2__
/// A bit for each lane, from lanes that are 0xff or 0.
constexpr int bitsPerLane = 1;
std::uint64_t bitsOf(Block lanes)
{
    return static_cast<std::uint64_t>(_mm_movemask_epi8(__m128i(lanes)));
}
#else
/// The lowest of four bits for each lane, from lanes that are 0xff or 0: the shift moves half of
/// each odd lane into the even one before it, which alone is kept.
constexpr int bitsPerLane = 4;
std::uint64_t bitsOf(Block lanes)
{
    using Pairs = std::uint16_t __attribute__((vector_size(16)));
    using Bytes = std::uint8_t __attribute__((vector_size(8)));
    const auto halves = std::bit_cast<std::uint64_t>(
        __builtin_convertvector(std::bit_cast<Pairs>(lanes) >> 4, Bytes));
    return halves & 0x1111111111111111;
}
#endif

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

/// What may stand behind a backslash, but for the "u" of a code unit.
constexpr std::array<bool, 256> simpleEscapes = [] {
    std::array<bool, 256> escapes{};
    for (const char escape : std::string_view("\"\\/bfnrt"))
        escapes[static_cast<std::uint8_t>(escape)] = true;
    return escapes;
}();

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

/// Decodes a string in its place, where it fits: no character is longer than its escape.
std::string_view decoded(char *start, const char *end)
{
    char *to = start;
    for (const char *from = start; from != end;) {
        if (*from != '\\') {
            *to++ = *from++;
            continue;
        }
        const char escape = from[1];
        from += 2;
        switch (escape) {
        case 'b':
            *to++ = '\b';
            break;
        case 'f':
            *to++ = '\f';
            break;
        case 'n':
            *to++ = '\n';
            break;
        case 'r':
            *to++ = '\r';
            break;
        case 't':
            *to++ = '\t';
            break;
        case 'u':
            to = appendUtf8(to, takeCodePoint(from));
            break;
        default:
            *to++ = escape;
            break;
        }
    }
    return {start, static_cast<std::size_t>(to - start)};
}

} // namespace

/// The second stage: passes one place of the first stage after the other. Each function begins
/// behind the first place of what it passes and ends behind the last; false: this is not JSON.
class JsonParser
{
public:
    /// \a places, from the first stage, are followed by one that is the text's end.
    JsonParser(std::span<char> text, const std::uint32_t *places, JsonValue *values)
        : m_text(text.data())
        , m_end(text.data() + text.size())
        , m_place(places)
        , m_next(values)
        , m_block(text.data())
    {
        findBackslash();
    }

    /// Whether the text is one object or array, and nothing else.
    bool passDocument()
    {
        char *const start = nextPlace();
        return isContainer(start) && passContainer(start, newValue({}, FieldKey::none))
            && m_text + *m_place == m_end;
    }

private:
    static bool isContainer(const char *start) { return *start == '{' || *start == '['; }

    char *nextPlace() { return m_text + *m_place++; }

    /// Passes the next place if \a character stands there.
    bool passNext(char character)
    {
        const bool isNext = m_text[*m_place] == character;
        m_place += isNext ? 1 : 0;
        return isNext;
    }

    JsonValue &newValue(std::string_view name, std::size_t field)
    {
        JsonValue &value = *m_next++;
        value.setName(name, field);
        value.set(Kind::Other);
        return value;
    }

    bool passContainer(const char *start, JsonValue &value)
    {
        return *start == '{' ? passObject(value) : passArray(value);
    }

    bool passObject(JsonValue &object)
    {
        object.m_fields = 0;
        object.set(Kind::Object);
        if (passNext('}'))
            return true;
        if (m_depth == JsonReader::deepestNesting)
            return false;
        ++m_depth;

        std::uint64_t fields = 0;
        bool counts = false; // by an object or array in it
        char separator = 0;
        do {
            char *const nameStart = m_text + m_place[0];
            const char *const colon = m_text + m_place[1];
            char *const start = m_text + m_place[2];
            m_place += 3;
            std::string_view name;
            if (*nameStart != '"' || *colon != ':' || !passString(nameStart, colon, name, true))
                return false;
            const std::size_t field = FieldKey::find(name);
            fields |= std::uint64_t{1} << field;
            // A member that nobody knows may still replace one before it.
            const bool isKept = field != FieldKey::none || counts;
            if (isContainer(start)) {
                JsonValue &value = newValue(name, field);
                if (!passContainer(start, value))
                    return false;
                counts |= !holdsNothing(value);
                if (!isKept && holdsNothing(value))
                    m_next = &value;
            } else if (!passScalar(start, isKept ? &newValue(name, field) : nullptr)) {
                return false;
            }
            separator = *nextPlace();
        } while (separator == ',');

        if (counts || countingFields.hasAnyOf(fields)) {
            object.m_fields = fields;
            object.set(Kind::Object, sizeOf(object));
        } else {
            m_next = &object + 1;
        }
        --m_depth;
        return separator == '}';
    }

    bool passArray(JsonValue &array)
    {
        array.set(Kind::Array);
        if (passNext(']'))
            return true;
        if (m_depth == JsonReader::deepestNesting)
            return false;
        ++m_depth;

        const char *separator = nullptr;
        do {
            char *const start = nextPlace();
            if (isContainer(start)) {
                JsonValue &element = newValue({}, FieldKey::none);
                if (!passContainer(start, element))
                    return false;
                if (holdsNothing(element))
                    m_next = &element;
            } else if (!passScalar(start, nullptr)) {
                return false;
            }
            separator = nextPlace();
        } while (*separator == ',');

        array.set(Kind::Array, sizeOf(array));
        --m_depth;
        return *separator == ']';
    }

    /// Whether the object or array that was passed last is without contents.
    bool holdsNothing(const JsonValue &container) const { return m_next == &container + 1; }

    std::size_t sizeOf(const JsonValue &container) const
    {
        return static_cast<std::size_t>(m_next - &container - 1);
    }

    /// \a value is null when nobody asks for it.
    [[gnu::always_inline]] bool passScalar(char *start, JsonValue *value)
    {
        const char *const next = m_text + *m_place;
        if (*start == '"') {
            std::string_view text;
            if (!passString(start, next, text, value != nullptr))
                return false;
            if (value) {
                value->m_text = text.data();
                value->set(Kind::String, text.size());
            }
            return true;
        }
        return passShortNumber(start, next, value) || passOther(start, value);
    }

    /// A number that ends at \a next and has at most seven digits, as almost all have.
    static bool passShortNumber(const char *start, const char *next, JsonValue *value)
    {
        const auto length = static_cast<std::size_t>(next - start);
        constexpr std::uint64_t zeros = 0x3030303030303030;
        if (length - 1 > 6 || (*start == '0' && length > 1))
            return false;
        static_assert(std::endian::native == std::endian::little);
        std::uint64_t digits = 0;
        std::memcpy(&digits, start, sizeof digits);
        digits = digits << (64 - 8 * length) | zeros >> (8 * length);
        constexpr std::uint64_t high = 0xf0f0f0f0f0f0f0f0;
        if ((digits & high) != zeros || ((digits + 0x0606060606060606) & high) != zeros)
            return false;
        if (value) {
            digits -= zeros;
            digits = (digits * 10 + (digits >> 8)) & 0x00ff00ff00ff00ff;
            digits = (digits * 100 + (digits >> 16)) & 0x0000ffff0000ffff;
            value->m_integer =
                static_cast<std::int64_t>((digits * 10'000 + (digits >> 32)) & 0xffffffff);
            value->set(Kind::Integer);
        }
        return true;
    }

    [[gnu::noinline]] bool passOther(const char *start, JsonValue *value) const
    {
        switch (*start) {
        case 't':
            return passLiteral(start, "true");
        case 'f':
            return passLiteral(start, "false");
        case 'n':
            return passLiteral(start, "null");
        default:
            return passNumber(start, value);
        }
    }

    [[gnu::always_inline]] bool passString(char *start, const char *next, std::string_view &text,
                                           bool isAsked)
    {
        // Only white space can lie between a string and the next place.
        const char *end = next - 1;
        while (*end != '"')
            --end;
        ++start;
        text = std::string_view(start, static_cast<std::size_t>(end - start));
        return m_backslash >= end || passEscapes(start, end, isAsked ? &text : nullptr);
    }

    /// Checks the escapes of the string from \a start to \a end, and decodes it when it is asked
    /// for.
    [[gnu::noinline]] bool passEscapes(char *start, const char *end, std::string_view *text)
    {
        while (m_backslash < end) {
            const char escape = m_backslash[1];
            m_backslashes &= m_backslashes - 1;
            if (escape == 'u') {
                if (!codeUnit(m_backslash + 2))
                    return false;
            } else if (!simpleEscapes[static_cast<std::uint8_t>(escape)]) {
                return false;
            } else if (escape == '\\') {
                findBackslash(); // the escaped one
                m_backslashes &= m_backslashes - 1;
            }
            findBackslash();
        }
        if (text)
            *text = decoded(start, end);
        return true;
    }

    /// The first backslash that has not been passed.
    void findBackslash()
    {
        while (m_backslashes == 0 && m_block < m_end) {
            Block block;
            std::memcpy(&block, m_block, sizeof block);
            m_backslashes = bitsOf(Block(block == '\\'));
            m_block += sizeof block;
        }
        static_assert(std::endian::native == std::endian::little);
        m_backslash = m_backslashes == 0
            ? m_end
            : m_block - sizeof(Block) + std::countr_zero(m_backslashes) / bitsPerLane;
    }

    /// Whether a literal or a number that began before the next place ends at \a end.
    bool isEndOfScalar(const char *end) const
    {
        return end == m_text + *m_place || *end == ' ' || *end == '\n' || *end == '\r'
            || *end == '\t';
    }

    bool passLiteral(const char *start, std::string_view literal) const
    {
        return std::memcmp(start, literal.data(), literal.size()) == 0
            && isEndOfScalar(start + literal.size());
    }

    /// \a value is null when nobody asks for the number.
    bool passNumber(const char *start, JsonValue *value) const
    {
        const char *at = start;
        const auto passDigits = [&at] {
            const char *const first = at;
            while (isDigit(*at))
                ++at;
            return at != first;
        };
        if (*at == '-')
            ++at;
        if (*at == '0')
            ++at;
        else if (!passDigits())
            return false;
        bool isInteger = true;
        if (*at == '.') {
            isInteger = false;
            ++at;
            if (!passDigits())
                return false;
        }
        if (*at == 'e' || *at == 'E') {
            isInteger = false;
            ++at;
            if (*at == '+' || *at == '-')
                ++at;
            if (!passDigits())
                return false;
        }
        if (value)
            setNumber(*value, std::string_view(start, static_cast<std::size_t>(at - start)),
                      isInteger);
        return isEndOfScalar(at);
    }

    /// A decimal of few digits. The division rounds as it should, since a double holds both numbers
    /// exactly.
    static std::optional<double> shortDecimal(std::string_view digits)
    {
        constexpr std::size_t exactDigits = 15;
        if (digits.size() > exactDigits + 1)
            return std::nullopt;
        std::int64_t number = 0;
        std::int64_t divisor = 1;
        std::int64_t factor = 1;
        for (const char character : digits) {
            if (character == '.') {
                factor = 10;
            } else if (isDigit(character)) {
                number = 10 * number + (character - '0');
                divisor *= factor;
            } else {
                return std::nullopt;
            }
        }
        return static_cast<double>(number) / static_cast<double>(divisor);
    }

    static void setNumber(JsonValue &value, std::string_view digits, bool isInteger)
    {
        if (!isInteger) {
            std::optional<double> decimal = shortDecimal(digits);
            if (!decimal)
                decimal =
                    QByteArrayView(digits.data(), static_cast<qsizetype>(digits.size())).toDouble();
            if (std::isfinite(*decimal)) {
                value.m_decimal = *decimal;
                value.set(Kind::Decimal);
                return;
            }
        }
        std::int64_t integer = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), integer);
        value.m_integer = isInteger && result.ec == std::errc() ? integer : 0;
        value.set(Kind::Integer);
    }

    char *const m_text;
    const char *const m_end;
    const std::uint32_t *m_place;
    JsonValue *m_next;
    const char *m_backslash = nullptr; ///< the first in what has not been passed
    const char *m_block; ///< up to here backslashes have been looked for
    std::uint64_t m_backslashes = 0; ///< in the block before
    int m_depth = 0;
};

const JsonValue *JsonReader::parse(std::span<char> text)
{
    if (m_parser.capacity() < text.size()
        && m_parser.allocate(std::bit_ceil(text.size())) != simdjson::SUCCESS)
        return nullptr;
    auto &firstStage = *m_parser.implementation;
    if (firstStage.stage1(reinterpret_cast<const std::uint8_t *>(text.data()), text.size(),
                          simdjson::stage1_mode::regular)
        != simdjson::SUCCESS)
        return nullptr;

    // At most every second place begins a value that is kept, but for those that are still open.
    const std::size_t most = firstStage.n_structural_indexes / 2 + deepestNesting + 2;
    if (m_capacity < most) {
        m_values =
            std::make_unique_for_overwrite<JsonValue[]>(most); // NOLINT(modernize-avoid-c-arrays)
        m_capacity = most;
    }

    // A zero begins nothing, so that the end needs not be looked for.
    char &behind = text.data()[text.size()];
    const char covered = std::exchange(behind, '\0');
    const bool isJson =
        JsonParser(text, firstStage.structural_indexes.get(), m_values.get()).passDocument();
    behind = covered;
    return isJson ? m_values.get() : nullptr;
}

} // namespace tallyglass
