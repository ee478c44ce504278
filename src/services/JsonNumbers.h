#pragma once

#include <QJsonValue>

#include <optional>

namespace tallyglass {

/// A number, or a string that reads as one; finite. Nothing for anything else.
std::optional<double> numberFrom(const QJsonValue &value);

} // namespace tallyglass
