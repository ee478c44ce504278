#pragma once

#include <functional>

namespace tallyglass {

/// For a child to run before its program: the system then kills it when we are killed ourselves.
/// The system watches the thread that started the child, so that must be one that lasts.
std::function<void()> dieWithThisProcess();

} // namespace tallyglass
