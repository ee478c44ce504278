#pragma once

#include "model/DisplayText.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tallyglass {

/// Every text that a user can see has a key; those of tools and windows stand in their tables. Keys
/// that end in ".format", and a few older ones, hold placeholders for formatText(). "%{site}"
/// stands for the domain where new versions are offered.
inline constexpr auto textKeys = std::to_array<std::string_view>(
    {// What every screen has
     "app.name", "limit.window.unknown", "limit.window.days", "limit.window.minutes",
     "common.settings", "common.refresh", "common.exit", "common.detected", "common.notDetected",
     "common.noData",
     // Panel
     "menu.open", "menu.period", "menu.cliMissing", "menu.cliNoticeBody", "summary.total",
     "metric.topModels", "metric.noModelInfo", "metric.cache", "metric.events", "metric.usage",
     "metric.resetRemaining", "status.remaining.format", "status.input.format",
     "status.output.format", "history.section", "history.empty", "updated.format",
     "footer.reset.format", "reset.minutes", "reset.hoursMinutes", "reset.daysHours",
     // Updates
     "update.check", "update.available", "update.body", "update.releaseNotes.title",
     "update.releaseNotes.link", "update.section", "update.settingsBody", "update.action",
     "update.openSite", "update.notConfigured",
     // Claude's token and endpoint
     "token.missing.title", "token.missing.body", "token.expired.title", "token.expired.body",
     "token.refresh", "api.status.format", "api.status.ok", "api.status.http", "api.status.parse",
     "api.status.expired", "api.status.noToken", "api.status.network", "api.status.never",
     // Settings
     "settings.cliIntegration", "settings.cliLocalDataNotice", "settings.recheck",
     "settings.data.format", "settings.widgetSection", "settings.widgetNote",
     "settings.launchAtLogin", "settings.launchAtLogin.needsApproval", "alerts.enable",
     "alerts.needsApproval", "alerts.threshold.format", "alerts.body", "budgets.section",
     "settings.countsAnswersOnce", "settings.countsAnswersOnce.note", "cli.claude.bridgeReady",
     "cli.claude.bridgeMissing",
     // Command line
     "report.progress.format", "report.noLogs.format", "command.cannotWrite.format",
     "command.unknownWord.format", "command.unknownWindow.format", "command.unknownCounting.format",
     "command.noProgram.format", "command.jsonIsWhole", "command.unknownTool.format",
     "command.jsonHasAll", "command.help", "age.minutes.format", "age.hours.format",
     "age.days.format", "explain.others.format", "explain.sum.format", "explain.noLimit",
     "explain.read.format", "explain.reset.format", "explain.resetPassed.format", "explain.noReset",
     "explain.otherLimits.format", "explain.endpointLimit.format", "audit.everyRecord",
     "audit.eachAnswerOnce", "audit.factor", "audit.records", "audit.blocks", "audit.resumed",
     "audit.innerCopies", "audit.repeats", "audit.replays", "audit.runningTotals", "audit.parts",
     "audit.earlierRuns", "audit.statedTotals", "audit.tooLarge", "audit.compressed",
     "audit.unreadable", "audit.notUtf8", "audit.brokenLines", "audit.tornLine", "audit.allRead",
     "audit.notRead.format", "audit.size.format", "audit.lines.format",
     "command.unknownPlaceholder.format", "pace.title", "pace.usedUp.format", "status.pace.format",
     "status.stale.format"});

/// One of the keys: a misspelt one does not compile.
class TextKey
{
public:
    // A key is written as the literal it is, so the conversion is meant to be implicit.
    consteval TextKey(const char *key) // NOLINT(google-explicit-constructor)
        : m_index(static_cast<std::size_t>(std::ranges::find(textKeys, key) - textKeys.begin()))
    {
        if (m_index == textKeys.size())
            throw "no such text key"; // Reached while compiling only, and an error there.
    }

    /// For the QML files, whose keys no compiler reads.
    static std::optional<TextKey> find(std::string_view key);

    const DisplayText &text() const;

private:
    explicit TextKey(std::size_t index)
        : m_index(index)
    {
    }

    std::size_t m_index;
};

/// The text of a key: from the installed catalogue, or else the Japanese default.
QString displayText(const DisplayText &text);
QString displayText(TextKey key);

/// Fills the placeholders of a text ("%@", "%d", or numbered: "%2$@") with \a arguments.
QString formatText(TextKey key, const QStringList &arguments);

} // namespace tallyglass
