#pragma once

#include "model/DisplayText.h"
#include "model/FewNames.h"

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace tallyglass {

/// The tracked command-line tools, in the order used everywhere: aggregation, history, panel rows.
/// The value is the index into per-provider arrays.
enum class UsageProvider : std::uint8_t {
    Codex,
    Claude,
    Copilot,
    Count, ///< no tool, but their number
};

inline constexpr auto allProviders = [] {
    std::array<UsageProvider, static_cast<std::size_t>(UsageProvider::Count)> all{};
    for (std::size_t i = 0; i < all.size(); ++i)
        all[i] = static_cast<UsageProvider>(i);
    return all;
}();

/// How a tool writes its logs.
enum class LogFormat : std::uint8_t {
    Records, ///< JSON at whose any depth usage may stand
    CopilotSessions, ///< usage is summed up by model where a session ends
};

/// All that is known of a tool. What acts on it stands elsewhere and asks for it here.
struct ProviderFacts
{
    const char *rawValue = nullptr; ///< its name in files and settings keys
    DisplayText displayName;
    DisplayText shortName;
    DisplayText installHint;

    struct
    {
        float red = 0; ///< 0 to 1, sRGB
        float green = 0;
        float blue = 0;
    } tint; ///< by which the tool is known in rows, chart and marks
    const char *mark = nullptr; ///< absolute M, L, C and Z commands in a 24 by 24 box
    bool markHasHoles = false; ///< outlines inside others, which run in no certain direction

    FewNames hints; ///< what records call the tool or its maker, in lower case
    FewNames logFolders; ///< below the home folder
    const char *homeVariable = nullptr; ///< of the environment: moves the tool's data elsewhere
    const char *movedLogFolder = nullptr; ///< below that place; empty: the place itself
    LogFormat logFormat = LogFormat::Records;

    const char *executable = nullptr;
    FewNames otherPaths; ///< of the executable, where no tool but this one has it
    const char *dataFolder = nullptr; ///< below the home folder
};

const ProviderFacts &factsOf(UsageProvider provider);

/// "codex", "claude", "copilot"
QLatin1String rawValue(UsageProvider provider);
std::optional<UsageProvider> providerFromRawValue(QStringView raw);

QString displayName(UsageProvider provider);
QString shortName(UsageProvider provider);

} // namespace tallyglass
