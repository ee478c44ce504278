#pragma once

#include "collect/JsonValue.h"
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

/// The first of \a keys that gives a date: a Unix time above 0, a date-time with its zone, or a
/// reading of the clock in \a zone.
std::optional<Instant> dateValue(const JsonValue &object, std::span<const FieldKey> keys,
                                 const QTimeZone &zone);

/// The token counters of an object, the aliases of each added up; nothing when none counts.
std::optional<TokenUsage> tokenUsage(const JsonValue &object);

/// When the record happened, nothing when it does not say.
std::optional<Instant> timestamp(const JsonValue &object, const QTimeZone &zone);

} // namespace tallyglass
