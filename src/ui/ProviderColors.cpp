#include "ui/ProviderColors.h"

namespace tallyglass {

QColor providerColor(UsageProvider provider)
{
    const auto &tint = factsOf(provider).tint;
    return QColor::fromRgbF(tint.red, tint.green, tint.blue);
}

} // namespace tallyglass
