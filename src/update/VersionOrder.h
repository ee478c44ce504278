#pragma once

#include <QStringView>

#include <compare>

namespace tallyglass {

/// Compares character by character, runs of digits as numbers of any length: "1.9" is less than
/// "1.10", and "1.01" is equivalent to "1.1". Of two texts of which one begins the other, the
/// shorter is less, so "2.0" is less than "2.0b1".
std::weak_ordering compareVersions(QStringView left, QStringView right);

} // namespace tallyglass
