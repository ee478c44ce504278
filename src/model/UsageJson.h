#pragma once

#include "model/UsageHistorySample.h"
#include "model/UsageSnapshot.h"

#include <QJsonArray>
#include <QJsonObject>

#include <optional>
#include <vector>

namespace tallyglass {

/// Keyed coding of the records: every key is the field's name, enumerations are their raw values,
/// dates ISO 8601 strings in whole seconds, absent fields are left out.
QJsonObject toJson(const UsageSnapshot &snapshot);
QJsonArray toJson(const std::vector<UsageHistorySample> &samples);
QJsonObject toJson(const TokenUsage &usage);
QJsonObject toJson(const RateLimitUsage &limit);

/// Reads what toJson() wrote. Nothing when a field is missing, of another type or unknown.
std::optional<UsageSnapshot> snapshotFromJson(const QJsonObject &json);
std::optional<std::vector<UsageHistorySample>> historyFromJson(const QJsonArray &json);

} // namespace tallyglass
