#include "collect/FieldReaders.h"

#include "collect/FieldAliases.h"
#include "model/IsoDateTime.h"
#include "model/LocalTime.h"

#include <QByteArrayView>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace tallyglass {

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

std::int64_t wholeNumber(double value)
{
    // 2^63 is exact as a double, the largest 64-bit integer is not.
    constexpr double limit = 9'223'372'036'854'775'808.0;
    return value >= -limit && value < limit ? static_cast<std::int64_t>(value) : 0;
}

std::int64_t wholeNumber(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && isDigit(text[1]))
        text.remove_prefix(1);
    std::int64_t value = 0;
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && stop == end ? value : 0;
}

/// Digits with an optional sign, fraction and exponent. No blanks, no hexadecimal, no "inf".
bool isDecimalNumber(std::string_view text)
{
    std::size_t at = 0;
    const auto skipDigits = [&] {
        const std::size_t start = at;
        while (at < text.size() && isDigit(text[at]))
            ++at;
        return at - start;
    };
    const auto skipSign = [&] {
        if (at < text.size() && (text[at] == '+' || text[at] == '-'))
            ++at;
    };

    skipSign();
    std::size_t digits = skipDigits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        digits += skipDigits();
    }
    if (digits == 0)
        return false;
    if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
        ++at;
        skipSign();
        if (skipDigits() == 0)
            return false;
    }
    return at == text.size();
}

std::optional<double> decimalNumber(std::string_view text)
{
    if (!isDecimalNumber(text))
        return std::nullopt;
    bool ok = false;
    const double value =
        QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).toDouble(&ok);
    return ok && std::isfinite(value) ? std::optional{value} : std::nullopt;
}

} // namespace

std::int64_t integerValue(const JsonValue *value)
{
    if (!value)
        return 0;
    switch (value->kind()) {
    case JsonValue::Kind::Integer:
        return value->integer();
    case JsonValue::Kind::Decimal:
        return wholeNumber(value->decimal());
    case JsonValue::Kind::String:
        return wholeNumber(value->text());
    default:
        return 0;
    }
}

std::optional<double> decimalValue(const JsonValue *value)
{
    if (!value)
        return std::nullopt;
    switch (value->kind()) {
    case JsonValue::Kind::Integer:
        return static_cast<double>(value->integer());
    case JsonValue::Kind::Decimal:
        return value->decimal();
    case JsonValue::Kind::String:
        return decimalNumber(value->text());
    default:
        return std::nullopt;
    }
}

std::optional<std::string_view> stringValue(const JsonValue *value)
{
    const bool isString = value && value->kind() == JsonValue::Kind::String;
    return isString ? std::optional{value->text()} : std::nullopt;
}

const JsonValue *objectValue(const JsonValue *value)
{
    return value && value->kind() == JsonValue::Kind::Object ? value : nullptr;
}

std::optional<Instant> dateValue(const JsonValue *value, const QTimeZone *zone)
{
    const auto text = stringValue(value);
    if (!text || zone) {
        if (const auto number = decimalValue(value))
            return fromUnixNumber(*number);
    }
    if (!text)
        return std::nullopt;
    if (const auto instant = parseIsoDateTime(*text))
        return instant;
    const auto local = zone ? parseLocalDateTime(*text) : std::nullopt;
    return local ? instantShowing(*local, *zone) : std::nullopt;
}

std::optional<Instant> firstDate(const JsonValue &object, std::span<const FieldKey> keys,
                                 const QTimeZone &zone)
{
    for (const FieldKey key : keys) {
        if (const auto date = dateValue(object.find(key), &zone))
            return date;
    }
    return std::nullopt;
}

std::optional<double> usedShare(const JsonValue *value, double largest)
{
    const auto share = decimalValue(value);
    if (!share)
        return std::nullopt;
    return std::clamp(*share < 1.0 ? *share : *share / 100, 0.0, largest);
}

std::optional<TokenUsage> tokenUsage(const JsonValue &object)
{
    static constexpr FieldSet counterFields(counterKeys);
    if (!object.hasAnyOf(counterFields))
        return std::nullopt;
    // All in one pass, as objects of usage have most of them.
    std::array<std::int64_t, counterKeys.size()> counters{};
    for (const JsonValue &member : object) {
        const std::size_t counter = member.field() - counterKeys.front().index();
        static_assert(counterKeys.back().index() - counterKeys.front().index() + 1
                      == counterKeys.size());
        if (counter < counters.size())
            counters[counter] = integerValue(&member);
    }
    TokenUsage usage{
        .inputTokens = checkedSum(counters[0], counters[1]),
        .outputTokens = checkedSum(counters[2], counters[3]),
        .cacheCreationTokens = checkedSum(counters[4], counters[5]),
        .cacheReadTokens = checkedSum(counters[6], counters[7]),
    };
    const std::int64_t total = counters[8];
    if (usage.counterSum() < 1 && total < 1)
        return std::nullopt;
    if (total > 0)
        usage.explicitTotalTokens = total;
    return usage;
}

std::optional<Instant> timestamp(const JsonValue &object, const QTimeZone &zone)
{
    static constexpr FieldSet timestampFields(timestampKeys);
    return object.hasAnyOf(timestampFields) ? firstDate(object, timestampKeys, zone) : std::nullopt;
}

} // namespace tallyglass
