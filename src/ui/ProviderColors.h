#pragma once

#include "model/UsageProvider.h"

#include <QColor>

namespace tallyglass {

/// The colour by which a provider is known in rows, chart and logos.
QColor providerColor(UsageProvider provider);

} // namespace tallyglass
