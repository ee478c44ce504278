#include "model/UsageProvider.h"

#include "model/DisplayTexts.h"

namespace tallyglass {

QLatin1String rawValue(UsageProvider provider)
{
    switch (provider) {
    case UsageProvider::Codex:
        return QLatin1String("codex");
    case UsageProvider::Claude:
        return QLatin1String("claude");
    case UsageProvider::Copilot:
        return QLatin1String("copilot");
    }
    Q_UNREACHABLE();
}

std::optional<UsageProvider> providerFromRawValue(QStringView raw)
{
    for (const UsageProvider provider : allProviders) {
        if (raw == rawValue(provider))
            return provider;
    }
    return std::nullopt;
}

QString displayName(UsageProvider provider)
{
    switch (provider) {
    case UsageProvider::Codex:
        return displayText("provider.codex");
    case UsageProvider::Claude:
        return displayText("provider.claude");
    case UsageProvider::Copilot:
        return displayText("provider.copilot");
    }
    Q_UNREACHABLE();
}

QString shortName(UsageProvider provider)
{
    switch (provider) {
    case UsageProvider::Codex:
        return displayText("provider.codex"); // Short as it is: it has no key of its own.
    case UsageProvider::Claude:
        return displayText("provider.claude.short");
    case UsageProvider::Copilot:
        return displayText("provider.copilot.short");
    }
    Q_UNREACHABLE();
}

} // namespace tallyglass
