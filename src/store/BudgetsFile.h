#pragma once

#include "model/UsageBudgets.h"
#include "store/StorageLocations.h"

namespace tallyglass {

/// The stored budgets; the built-in ones when the file is missing or malformed anywhere.
UsageBudgets loadBudgets(const StorageLocations &locations);

/// Writes "budgets.json". A malformed one, which somebody wrote by hand, is kept as
/// "budgets.json.malformed". False when nothing was written, as where there is one that cannot be
/// read.
bool saveBudgets(const UsageBudgets &budgets, const StorageLocations &locations);

} // namespace tallyglass
