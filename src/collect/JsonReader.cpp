#include "collect/JsonReader.h"

#include "collect/LaneBits.h"

#include <QByteArrayView>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>
#include <utility>

namespace tallyglass {

namespace {

using Kind = JsonValue::Kind;

/// Holds most names and short texts.
using Block = std::uint8_t __attribute__((vector_size(16)));
/// What is examined of a longer text at once: a bit for each character fills a word.
using LongBlock = std::uint8_t __attribute__((vector_size(64)));
static_assert(sizeof(LongBlock) <= JsonReader::padding);

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
    return static_cast<std::size_t>(to - start);
}

} // namespace

/// Passes one value after the other. Each function is given the position where what it passes
/// begins and gives the one behind it; null: this is not JSON.
class JsonParser
{
public:
    /// A zero stands behind the text, which begins nothing, so that the end needs not be looked
    /// for.
    explicit JsonParser(JsonValue *values)
        : m_next(values)
    {
    }

    /// An object or array, and the white space around it.
    char *passDocument(char *at)
    {
        at = passBlanks(at);
        at = isContainer(at) ? passContainer(at, newValue({}, FieldKey::none)) : nullptr;
        return at ? passBlanks(at) : nullptr;
    }

private:
    static bool isContainer(const char *start) { return *start == '{' || *start == '['; }

    [[gnu::always_inline]] static char *passBlanks(char *at)
    {
        while (*at == ' ' || *at == '\n' || *at == '\r' || *at == '\t')
            ++at;
        return at;
    }

    JsonValue &newValue(std::string_view name, std::size_t field)
    {
        JsonValue &value = *m_next++;
        value.setName(name, field);
        value.set(Kind::Other);
        return value;
    }

    char *passContainer(char *at, JsonValue &value)
    {
        return *at == '{' ? passObject(at, value) : passArray(at, value);
    }

    char *passObject(char *at, JsonValue &object)
    {
        object.m_fields = 0;
        object.set(Kind::Object);
        at = passBlanks(at + 1);
        if (*at == '}')
            return at + 1;
        if (m_depth == JsonReader::deepestNesting)
            return nullptr;
        ++m_depth;

        std::uint64_t fields = 0;
        bool counts = false; // by an object or array in it
        for (;; at = passBlanks(at + 1)) {
            std::string_view name;
            at = *at == '"' ? passString(at, &name) : nullptr;
            if (!at)
                return nullptr;
            at = passBlanks(at);
            if (*at != ':')
                return nullptr;
            at = passBlanks(at + 1);
            const std::size_t field = FieldKey::find(name);
            fields |= std::uint64_t{1} << field;
            // A member that nobody knows may still replace one before it.
            const bool isKept = field != FieldKey::none || counts;
            if (isContainer(at)) {
                JsonValue &value = newValue(name, field);
                at = passContainer(at, value);
                counts |= !holdsNothing(value);
                if (!isKept && holdsNothing(value))
                    m_next = &value;
            } else {
                at = passScalar(at, isKept ? &newValue(name, field) : nullptr);
            }
            if (!at)
                return nullptr;
            at = passBlanks(at);
            if (*at != ',')
                break;
        }

        if (counts || countingFields.hasAnyOf(fields)) {
            object.m_fields = fields;
            object.set(Kind::Object, sizeOf(object));
        } else {
            m_next = &object + 1;
        }
        --m_depth;
        return *at == '}' ? at + 1 : nullptr;
    }

    char *passArray(char *at, JsonValue &array)
    {
        array.set(Kind::Array);
        at = passBlanks(at + 1);
        if (*at == ']')
            return at + 1;
        if (m_depth == JsonReader::deepestNesting)
            return nullptr;
        ++m_depth;

        for (;; at = passBlanks(at + 1)) {
            if (isContainer(at)) {
                JsonValue &element = newValue({}, FieldKey::none);
                at = passContainer(at, element);
                if (holdsNothing(element))
                    m_next = &element;
            } else {
                at = passScalar(at, nullptr);
            }
            if (!at)
                return nullptr;
            at = passBlanks(at);
            if (*at != ',')
                break;
        }

        array.set(Kind::Array, sizeOf(array));
        --m_depth;
        return *at == ']' ? at + 1 : nullptr;
    }

    /// Whether the object or array that was passed last is without contents.
    bool holdsNothing(const JsonValue &container) const { return m_next == &container + 1; }

    std::size_t sizeOf(const JsonValue &container) const
    {
        return static_cast<std::size_t>(m_next - &container - 1);
    }

    /// \a value is null when nobody asks for it.
    [[gnu::always_inline]] static char *passScalar(char *at, JsonValue *value)
    {
        if (*at == '"') {
            std::string_view text;
            at = passString(at, value ? &text : nullptr);
            if (value) {
                value->m_text = text.data();
                value->set(Kind::String, text.size());
            }
            return at;
        }
        char *const behind = passShortNumber(at, value);
        return behind ? behind : passOther(at, value);
    }

    /// An integer of at most seven digits, as almost all are.
    [[gnu::always_inline]] static char *passShortNumber(char *at, JsonValue *value)
    {
        constexpr std::uint64_t zeros = 0x3030303030303030;
        constexpr std::uint64_t high = 0xf0f0f0f0f0f0f0f0;
        static_assert(std::endian::native == std::endian::little);
        std::uint64_t digits = 0;
        std::memcpy(&digits, at, sizeof digits);
        digits ^= zeros;
        // What a byte beyond the digits carries into the next matters no more.
        const std::uint64_t others = (digits | (digits + 0x0606060606060606)) & high;
        const int length = std::countr_zero(others) / 8;
        if (length == 0 || length == 8 || (*at == '0' && length > 1))
            return nullptr;
        char *const end = at + length;
        if (*end == '.' || (*end | 0x20) == 'e')
            return nullptr;
        if (value) {
            digits <<= 64 - 8 * length;
            digits = (digits * 10 + (digits >> 8)) & 0x00ff00ff00ff00ff;
            digits = (digits * 100 + (digits >> 16)) & 0x0000ffff0000ffff;
            value->m_integer =
                static_cast<std::int64_t>((digits * 10'000 + (digits >> 32)) & 0xffffffff);
            value->set(Kind::Integer);
        }
        return end;
    }

    [[gnu::noinline]] static char *passOther(char *at, JsonValue *value)
    {
        switch (*at) {
        case 't':
            return passLiteral(at, "true");
        case 'f':
            return passLiteral(at, "false");
        case 'n':
            return passLiteral(at, "null");
        default:
            return passNumber(at, value);
        }
    }

    /// \a text is null when nobody asks for it.
    [[gnu::always_inline]] static char *passString(char *at, std::string_view *text)
    {
        ++at;
        char *const end = passPlain(at);
        if (*end != '"') {
            // By value: a text whose address were given away would not stay in registers.
            const auto [behind, size] = passEscapes(at, end, text != nullptr);
            if (text)
                *text = std::string_view(at, size);
            return behind;
        }
        if (text)
            *text = std::string_view(at, end);
        return end + 1;
    }

    /// Passes the characters of a string up to a quote, a backslash or one that no string has.
    [[gnu::always_inline]] static char *passPlain(char *at)
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

    struct PassedString
    {
        char *behind; ///< null: this is not JSON
        std::size_t size; ///< of the text once decoded, if it was asked for
    };

    /// Passes the rest of the string that began at \a start, from the backslash at \a at on.
    [[gnu::noinline]] static PassedString passEscapes(char *start, char *at, bool isAskedFor)
    {
        std::uint64_t ends = 0;
        bool isFirstEscaped = false;
        for (;; at += sizeof(LongBlock)) {
            LongBlock block;
            std::memcpy(&block, at, sizeof block);
            const std::uint64_t quotes = laneBits(block == '"');
            const std::uint64_t backslashes = laneBits(block == '\\');
            const std::uint64_t escapes =
                everySecondOfRun(backslashes & ~std::uint64_t{isFirstEscaped});
            const std::uint64_t escaped = escapes << 1 | std::uint64_t{isFirstEscaped};
            isFirstEscaped = escapes >> 63 != 0;

            ends = (quotes & ~escaped) | laneBits(block < 0x20);
            const std::uint64_t beforeEnd = (ends & -ends) - 1;
            const std::uint64_t frequent = quotes | backslashes | laneBits(block == 'n');
            for (std::uint64_t rest = escaped & beforeEnd & ~frequent; rest != 0;
                 rest &= rest - 1) {
                if (!isEscape(at + std::countr_zero(rest)))
                    return {};
            }
            if (ends != 0)
                break;
        }
        at += std::countr_zero(ends);
        if (*at != '"')
            return {};
        return {.behind = at + 1, .size = isAskedFor ? decode(start, at) : 0};
    }

    /// Of each run of bits the lowest and every second from there.
    static std::uint64_t everySecondOfRun(std::uint64_t runs)
    {
        if ((runs & runs << 1) == 0)
            return runs;
        std::uint64_t chosen = 0;
        while (runs != 0) {
            const std::uint64_t lowest = runs & -runs;
            chosen |= lowest;
            runs &= ~(lowest | lowest << 1);
        }
        return chosen;
    }

    /// Whether what stands at \a at may follow a backslash.
    static bool isEscape(const char *at)
    {
        return *at == 'u' ? codeUnit(at + 1).has_value()
                          : simpleEscapes[static_cast<std::uint8_t>(*at)];
    }

    static char *passLiteral(char *at, std::string_view literal)
    {
        return std::memcmp(at, literal.data(), literal.size()) == 0 ? at + literal.size() : nullptr;
    }

    /// \a value is null when nobody asks for the number.
    static char *passNumber(char *at, JsonValue *value)
    {
        const char *const start = at;
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
            return nullptr;
        bool isInteger = true;
        if (*at == '.') {
            isInteger = false;
            ++at;
            if (!passDigits())
                return nullptr;
        }
        if (*at == 'e' || *at == 'E') {
            isInteger = false;
            ++at;
            if (*at == '+' || *at == '-')
                ++at;
            if (!passDigits())
                return nullptr;
        }
        if (value)
            setNumber(*value, std::string_view(start, at), isInteger);
        return at;
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

    JsonValue *m_next;
    int m_depth = 0;
};

const JsonValue *JsonReader::parse(std::span<char> text)
{
    // No value that is kept is shorter than an array around another, but for those still open.
    const std::size_t most = text.size() / 2 + deepestNesting + 2;
    if (m_capacity < most) {
        m_values =
            std::make_unique_for_overwrite<JsonValue[]>(most); // NOLINT(modernize-avoid-c-arrays)
        m_capacity = most;
    }

    char *const end = text.data() + text.size();
    const char covered = std::exchange(*end, '\0');
    const bool isJson = JsonParser(m_values.get()).passDocument(text.data()) == end;
    *end = covered;
    return isJson ? m_values.get() : nullptr;
}

} // namespace tallyglass
