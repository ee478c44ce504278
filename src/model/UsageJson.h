#pragma once

#include "model/UsageSnapshot.h"

#include <QJsonObject>

#include <optional>

namespace tallyglass {

/// Keyed coding of the records: every key is the field's name, enumerations are their raw values,
/// dates ISO 8601 strings in whole seconds, absent fields are left out.
QJsonObject toJson(const UsageSnapshot &snapshot);

/// Reads what toJson() wrote. Nothing when a field is missing, of another type or unknown.
std::optional<UsageSnapshot> snapshotFromJson(const QJsonObject &json);

} // namespace tallyglass
