#pragma once

#include "json/JsonValue.h"
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
std::int64_t integerValue(const JsonValue *value);

/// A number, or a string that reads as a decimal number; finite.
std::optional<double> decimalValue(const JsonValue *value);

std::optional<std::string_view> stringValue(const JsonValue *value);
/// The value itself, null when it is no object.
const JsonValue *objectValue(const JsonValue *value);

/// A date: a Unix time above 0, or a text with a date-time and its zone. With a \a zone also what
/// logs write: a Unix time as a text, and a reading of the clock in that zone.
std::optional<Instant> dateValue(const JsonValue *value, const QTimeZone *zone);

/// The first of \a keys that gives a date as logs write it.
std::optional<Instant> firstDate(const JsonValue &object, std::span<const FieldKey> keys,
                                 const QTimeZone &zone);

/// A used share as a fraction from 0 to \a largest. All write percents, so 1 is one percent; only
/// below 1 can a value be meant as a fraction.
std::optional<double> usedShare(const JsonValue *value, double largest);

/// The token counters of an object, the aliases of each added up; nothing when none counts.
std::optional<TokenUsage> tokenUsage(const JsonValue &object);

/// When the record happened, nothing when it does not say.
std::optional<Instant> timestamp(const JsonValue &object, const QTimeZone &zone);

} // namespace tallyglass
