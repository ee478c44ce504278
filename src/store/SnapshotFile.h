#pragma once

#include "model/UsageSnapshot.h"
#include "store/StorageLocations.h"

#include <QByteArray>

#include <optional>

namespace tallyglass {

/// The content of "usage_snapshot.json": indented JSON with sorted keys.
QByteArray encodeSnapshot(const UsageSnapshot &snapshot);

/// Writes the snapshot to each of its locations; one that fails does not keep it from the others.
void writeSnapshot(const UsageSnapshot &snapshot, const StorageLocations &locations);

/// The snapshot from the first location that has a readable one.
std::optional<UsageSnapshot> readSnapshot(const StorageLocations &locations);

} // namespace tallyglass
