#pragma once

#include "model/UsageBudgets.h"
#include "store/StorageLocations.h"

namespace tallyglass {

/// The stored budgets; the built-in ones when the file is missing or malformed anywhere.
UsageBudgets loadBudgets(const StorageLocations &locations);

/// Writes "budgets.json". False when it could not be written.
bool saveBudgets(const UsageBudgets &budgets, const StorageLocations &locations);

} // namespace tallyglass
