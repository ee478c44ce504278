#pragma once

#include "platform/Host.h"

namespace tallyglass {

/// Fills in what the information dictionary of the running bundle states: identifier, versions,
/// feed and key. What it lacks, or states as anything but text, stays empty.
void readBundleFacts(Host &host);

} // namespace tallyglass
