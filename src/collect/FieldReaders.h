#pragma once

#include "collect/ObjectFields.h"
#include "model/Instant.h"
#include "model/TokenUsage.h"

#include <optional>
#include <span>
#include <string_view>

class QTimeZone;

namespace tallyglass {

// Each reader takes what may be absent (null) or of any type, and never fails.

/// A counter: a number cut toward zero, or a string of digits with an optional sign. 0 for anything
/// else and for what does not fit 64 bits.
std::int64_t integerValue(const simdjson::dom::element *value);

/// A number, or a string that reads as a decimal number; finite.
std::optional<double> decimalValue(const simdjson::dom::element *value);

std::optional<std::string_view> stringValue(const simdjson::dom::element *value);
std::optional<simdjson::dom::object> objectValue(const simdjson::dom::element *value);

/// The first of \a keys that gives a date: a Unix time above 0, a date-time with its zone, or a
/// reading of the clock in \a zone.
std::optional<Instant> dateValue(const ObjectFields &fields, std::span<const FieldKey> keys,
                                 const QTimeZone &zone);

/// The token counters of an object, the aliases of each added up; nothing when none counts.
std::optional<TokenUsage> tokenUsage(const ObjectFields &fields);

/// When the record happened, nothing when it does not say.
std::optional<Instant> timestamp(const ObjectFields &fields, const QTimeZone &zone);

} // namespace tallyglass
