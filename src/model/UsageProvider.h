#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace tallyglass {

/// The tracked command-line tools. The value is the index into per-provider arrays.
enum class UsageProvider : std::uint8_t { Codex, Claude, Copilot };

/// The order used everywhere: aggregation, history, panel rows.
inline constexpr std::array allProviders{UsageProvider::Codex, UsageProvider::Claude,
                                         UsageProvider::Copilot};

/// The name in files and settings keys: "codex", "claude", "copilot".
QLatin1String rawValue(UsageProvider provider);
std::optional<UsageProvider> providerFromRawValue(QStringView raw);

QString displayName(UsageProvider provider);
QString shortName(UsageProvider provider);

} // namespace tallyglass
