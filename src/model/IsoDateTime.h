#pragma once

#include "model/Instant.h"
#include "model/LocalTime.h"

#include <QString>

#include <optional>
#include <string_view>

namespace tallyglass {

/// Reads an internet date-time (RFC 3339): "2024-05-01T12:30:00Z", with or without a fraction of
/// any length, zone "Z" or "+09:00". Nothing for anything else, impossible dates and those outside
/// the years 1 to 9999 included.
std::optional<Instant> parseIsoDateTime(std::string_view text);

/// Reads "2024-05-01 12:30:00" or "2024-05-01" (midnight) as a reading of a local clock.
std::optional<LocalTime> parseLocalDateTime(std::string_view text);

/// "2024-05-01T12:30:00Z": whole seconds, the rest is dropped. What lies outside the years 1 to
/// 9999 is written as the nearest within, so that it can always be read back.
QString formatIsoDateTime(Instant instant);

} // namespace tallyglass
