#include "model/UsageProvider.h"

#include "model/DisplayTexts.h"

#include <algorithm>

namespace tallyglass {

namespace {

constexpr const char *codexMark =
#include "model/marks/codex.path"
    ;
constexpr const char *claudeMark =
#include "model/marks/claude.path"
    ;
constexpr const char *copilotMark =
#include "model/marks/copilot.path"
    ;

constexpr std::array<ProviderFacts, allProviders.size()> table{{
    {
        .rawValue = "codex",
        .displayName = {"provider.codex", "Codex"},
        .shortName = {"provider.codex", "Codex"}, // Short as it is: it has no key of its own.
        .installHint = {"cli.codex.installHint",
                        "Codex CLIまたはCodexアプリをインストールし、ログイン後に一度起動してくださ"
                        "い。"},
        .tint = {0.16F, 0.56F, 0.86F},
        .mark = codexMark,
        .markHasHoles = true,
        .hints = {"openai"},
        .logFolders = {".codex/sessions"},
        .homeVariable = "CODEX_HOME",
        .movedLogFolder = "sessions",
        .executable = "codex",
        .otherPaths = {"/Applications/Codex.app/Contents/Resources/codex"},
        .dataFolder = ".codex",
    },
    {
        .rawValue = "claude",
        .displayName = {"provider.claude", "Claude Code"},
        .shortName = {"provider.claude.short", "Claude"},
        .installHint = {"cli.claude.installHint",
                        "Claude Code CLIをインストールし、ログイン後に一度起動してください。"},
        .tint = {0.86F, 0.38F, 0.22F},
        .mark = claudeMark,
        .hints = {"claude", "anthropic"},
        .logFolders = {".claude", "Library/Application Support/Claude/local-agent-mode-sessions"},
        .homeVariable = "CLAUDE_CONFIG_DIR",
        .movedLogFolder = "",
        .executable = "claude",
        .dataFolder = ".claude",
    },
    {
        .rawValue = "copilot",
        .displayName = {"provider.copilot", "GitHub Copilot"},
        .shortName = {"provider.copilot.short", "Copilot"},
        .installHint = {"cli.copilot.installHint",
                        "GitHub Copilot CLIをインストールし、ログイン後に一度起動してください。使用"
                        "量はセッションのevents.jsonlから集計されます。"},
        .tint = {0.20F, 0.66F, 0.52F},
        .mark = copilotMark,
        .markHasHoles = true,
        .hints = {"copilot", "github"},
        .logFolders = {".copilot/session-state"},
        .homeVariable = "COPILOT_HOME",
        .movedLogFolder = "session-state",
        .logFormat = LogFormat::CopilotSessions,
        .executable = "copilot",
        .dataFolder = ".copilot",
    },
}};

static_assert(std::ranges::all_of(table,
                                  [](const ProviderFacts &facts) {
                                      return facts.rawValue && facts.displayName.key
                                          && facts.shortName.key && facts.installHint.key
                                          && facts.tint.red + facts.tint.green + facts.tint.blue > 0
                                          && facts.mark && facts.executable && facts.dataFolder
                                          && !facts.hints.isEmpty() && !facts.logFolders.isEmpty()
                                          && facts.homeVariable && facts.movedLogFolder;
                                  }),
              "a tool lacks its row, or the row a fact");

} // namespace

const ProviderFacts &factsOf(UsageProvider provider)
{
    return table[static_cast<std::size_t>(provider)];
}

QLatin1String rawValue(UsageProvider provider)
{
    return QLatin1String(factsOf(provider).rawValue);
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
    return displayText(factsOf(provider).displayName);
}

QString shortName(UsageProvider provider)
{
    return displayText(factsOf(provider).shortName);
}

} // namespace tallyglass
