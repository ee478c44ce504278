#include "ui/ProviderColors.h"

namespace tallyglass {

QColor providerColor(UsageProvider provider)
{
    switch (provider) {
    case UsageProvider::Codex:
        return QColor::fromRgbF(0.16F, 0.56F, 0.86F);
    case UsageProvider::Claude:
        return QColor::fromRgbF(0.86F, 0.38F, 0.22F);
    case UsageProvider::Copilot:
        return QColor::fromRgbF(0.20F, 0.66F, 0.52F);
    }
    Q_UNREACHABLE();
}

} // namespace tallyglass
