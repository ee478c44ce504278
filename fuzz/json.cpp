// The parser accepts and reads what the library's own does.

#include "Fuzz.h"
#include "collect/FieldAliases.h"
#include "json/JsonReader.h"

#include <simdjson.h>

#include <algorithm>
#include <ranges>
#include <string_view>
#include <vector>

using namespace tallyglass;
using fuzz::require;
namespace dom = simdjson::dom;

namespace {

std::size_t fieldOf(std::string_view name)
{
    const auto place = std::ranges::find(fieldNames, name) - fieldNames.begin();
    return place < std::ssize(fieldNames) ? static_cast<std::size_t>(place) : FieldKey::none;
}

/// Whether it holds a counting field in itself or further in.
bool counts(const dom::element &value)
{
    if (value.is_array())
        return std::ranges::any_of(dom::array(value), counts);
    return value.is_object() && std::ranges::any_of(dom::object(value), [](const auto &member) {
               const std::size_t field = fieldOf(member.key);
               return (field != FieldKey::none
                       && countingFields.hasAnyOf(std::uint64_t{1} << field))
                   || counts(member.value);
           });
}

void compare(const JsonValue &ours, const dom::element &theirs);

void compareMembers(const JsonValue &ours, const dom::object &theirs)
{
    std::vector<const JsonValue *> kept;
    for (const JsonValue &member : ours)
        kept.push_back(&member);
    std::vector<dom::key_value_pair> all;
    for (const auto member : theirs)
        all.push_back(member);
    // From the back, for of members that share a name the last are kept.
    for (const auto &member : all | std::views::reverse) {
        if (!kept.empty() && kept.back()->name() == member.key) {
            compare(*kept.back(), member.value);
            kept.pop_back();
        } else {
            require(fieldOf(member.key) == FieldKey::none && !counts(member.value),
                    "what readers ask for is kept");
        }
    }
    require(kept.empty(), "all that is kept stands in the text");
}

void compareElements(const JsonValue &ours, const dom::array &theirs)
{
    auto kept = ours.begin();
    for (const auto element : theirs) {
        if (!counts(element))
            continue;
        require(kept != ours.end(), "no element is lost");
        compare(*kept, element);
        ++kept;
    }
    require(kept == ours.end(), "no element is made up");
}

void compare(const JsonValue &ours, const dom::element &theirs)
{
    switch (ours.kind()) {
    case JsonValue::Kind::Other:
        return;
    case JsonValue::Kind::Null:
        return require(theirs.is_null(), "null is null");
    case JsonValue::Kind::Integer:
        return require(ours.integer() == (theirs.is_int64() ? std::int64_t(theirs) : 0),
                       "integers are equal");
    case JsonValue::Kind::Decimal:
        return require(theirs.is_double() && ours.decimal() == double(theirs),
                       "decimals are equal");
    case JsonValue::Kind::String:
        return require(theirs.is_string() && ours.text() == std::string_view(theirs),
                       "texts are equal");
    case JsonValue::Kind::Array:
    case JsonValue::Kind::Object:
        break;
    }
    require(ours.kind() == JsonValue::Kind::Array ? theirs.is_array() : theirs.is_object(),
            "containers are of one kind");
    if (!counts(theirs))
        require(ours.size() == 0, "what cannot count has no contents");
    else if (theirs.is_array())
        compareElements(ours, theirs);
    else
        compareMembers(ours, theirs);
}

/// Half of a surrogate pair, and numbers beyond 64 bits, for which newer versions have an error of
/// their own.
bool mayBeExcepted(simdjson::error_code error, const QByteArray &json)
{
    const std::string_view message = simdjson::error_message(error);
    return (error == simdjson::STRING_ERROR && json.contains("\\u"))
        || error == simdjson::NUMBER_ERROR || message.find("integer") != std::string_view::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    if (!simdjson::validate_utf8(data, size))
        return 0;
    const QByteArray json(data, static_cast<qsizetype>(size));
    dom::parser parser;
    dom::element theirs;
    const auto error = parser.parse(data, size).get(theirs);
    const bool isContainer =
        error == simdjson::SUCCESS && (theirs.is_object() || theirs.is_array());

    JsonReader reader(countingFields);
    // What follows the text must not be taken for a part of it.
    QByteArray text = json + "\"}]:,0" + QByteArray(JsonReader::padding, '}');
    const JsonValue *ours = reader.parse({text.data(), size});
    if (ours && isContainer)
        compare(*ours, theirs);
    else
        require(!ours == !isContainer || (ours && mayBeExcepted(error, json)),
                "both accept a text or neither");
    return 0;
}
