#include "collect/FieldReaders.h"

#include "model/IsoDateTime.h"
#include "model/LocalTime.h"

#include <QByteArrayView>

#include <charconv>
#include <cmath>

namespace tallyglass {

using simdjson::dom::element;
using simdjson::dom::element_type;

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

std::optional<Instant> dateFrom(const element *value, const QTimeZone &zone)
{
    if (const auto number = decimalValue(value))
        return *number > 0 ? std::optional{fromUnixNumber(*number)} : std::nullopt;
    const auto text = stringValue(value);
    if (!text)
        return std::nullopt;
    if (const auto instant = parseIsoDateTime(*text))
        return instant;
    const auto local = parseLocalDateTime(*text);
    return local ? instantShowing(*local, zone) : std::nullopt;
}

/// One counter under its two names, which the tools use in turn.
std::int64_t counter(const ObjectFields &fields, FieldKey key, FieldKey alias)
{
    return checkedSum(integerValue(fields.find(key)), integerValue(fields.find(alias)));
}

} // namespace

std::int64_t integerValue(const element *value)
{
    if (!value)
        return 0;
    switch (value->type()) {
    case element_type::INT64:
        return value->get_int64().value_unsafe();
    case element_type::DOUBLE:
        return wholeNumber(value->get_double().value_unsafe());
    case element_type::STRING:
        return wholeNumber(value->get_string().value_unsafe());
    default: // An unsigned number here exceeds 63 bits.
        return 0;
    }
}

std::optional<double> decimalValue(const element *value)
{
    if (!value)
        return std::nullopt;
    switch (value->type()) {
    case element_type::INT64:
    case element_type::DOUBLE:
        return value->get_double().value_unsafe();
    case element_type::UINT64:
        return 0; // Beyond 64 bits with a sign: such a number reads as 0, as in a counter.
    case element_type::STRING:
        return decimalNumber(value->get_string().value_unsafe());
    default:
        return std::nullopt;
    }
}

std::optional<std::string_view> stringValue(const element *value)
{
    std::string_view text;
    return value && value->get(text) == simdjson::SUCCESS ? std::optional{text} : std::nullopt;
}

std::optional<simdjson::dom::object> objectValue(const element *value)
{
    simdjson::dom::object object;
    return value && value->get(object) == simdjson::SUCCESS ? std::optional{object} : std::nullopt;
}

std::optional<Instant> dateValue(const ObjectFields &fields, std::span<const FieldKey> keys,
                                 const QTimeZone &zone)
{
    for (const FieldKey key : keys) {
        if (const auto date = dateFrom(fields.find(key), zone))
            return date;
    }
    return std::nullopt;
}

std::optional<TokenUsage> tokenUsage(const ObjectFields &fields)
{
    TokenUsage usage{
        .inputTokens = counter(fields, "input_tokens", "prompt_tokens"),
        .outputTokens = counter(fields, "output_tokens", "completion_tokens"),
        .cacheCreationTokens =
            counter(fields, "cache_creation_input_tokens", "cache_creation_tokens"),
        .cacheReadTokens = counter(fields, "cache_read_input_tokens", "cache_read_tokens"),
    };
    const std::int64_t total = integerValue(fields.find("total_tokens"));
    if (usage.counterSum() < 1 && total < 1)
        return std::nullopt;
    if (total > 0)
        usage.explicitTotalTokens = total;
    return usage;
}

std::optional<Instant> timestamp(const ObjectFields &fields, const QTimeZone &zone)
{
    return dateValue(fields, timestampKeys, zone);
}

} // namespace tallyglass
