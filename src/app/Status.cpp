#include "app/Status.h"

#include "app/Output.h"
#include "app/TerminalText.h"
#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "model/Pace.h"
#include "store/SnapshotFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include <algorithm>
#include <array>
#include <cmath>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

/// Three refreshes: whoever writes the snapshot runs no more, or cannot write.
constexpr auto staleAfter = 15min;

/// One tool's figures as texts.
class ToolStatus
{
public:
    ToolStatus(const ProviderUsageSummary &summary, Instant now)
        : m_summary(summary)
        , m_now(now)
    {
    }

    QString tool() const { return shortName(m_summary.provider); }
    QString percent() const { return m_summary.percentText(); }
    double share() const { return m_summary.percent(); }
    QString tokens() const { return formatTokenCount(m_summary.tokens.totalTokens()); }

    QString reset() const
    {
        return resetDate() ? formatCompactCountdown(*resetDate(), m_now) : QStringLiteral("--");
    }

    QString pace() const
    {
        const auto &limit = m_summary.rateLimit;
        const auto found = limit ? paceOf(*limit, m_now) : std::nullopt;
        return found ? paceText(*found, m_now) : QStringLiteral("--");
    }

    /// The limit that it tells is over.
    bool isOver() const { return resetDate() && *resetDate() <= m_now; }

    /// "Codex 64%"
    QString brief() const { return tool() + u' ' + percent(); }

    QString full() const
    {
        QString text = brief();
        if (resetDate())
            text += QStringLiteral(", ") + formatResetCountdown(*resetDate(), m_now);
        if (pace() != QLatin1String("--"))
            text += QStringLiteral(", ") + formatText("status.pace.format", {pace()});
        return text;
    }

    QString id() const { return rawValue(m_summary.provider); }

private:
    std::optional<Instant> resetDate() const
    {
        return m_summary.rateLimit ? m_summary.rateLimit->resetDate : std::nullopt;
    }

    const ProviderUsageSummary &m_summary;
    Instant m_now;
};

/// What a format may ask for, of the snapshot and of the tool that has used most.
struct Placeholder
{
    const char *name;
    QString (*text)(const ToolStatus &tool);
};
constexpr std::array toolPlaceholders{
    Placeholder{"tool", [](const ToolStatus &tool) { return tool.tool(); }},
    Placeholder{"percent", [](const ToolStatus &tool) { return tool.percent(); }},
    Placeholder{"tokens", [](const ToolStatus &tool) { return tool.tokens(); }},
    Placeholder{"reset", [](const ToolStatus &tool) { return tool.reset(); }},
    Placeholder{"pace", [](const ToolStatus &tool) { return tool.pace(); }},
};
constexpr std::array otherPlaceholders{"all", "window", "age", "stale"};

/// Calls \a fill(name) for each "{name}" and puts its text there; "{{" stands for a brace.
template<typename Fill>
QString filled(const QString &format, Fill fill)
{
    QString text;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const qsizetype end = format[i] == u'{' ? format.indexOf(u'}', i) : -1;
        if (format[i] == u'{' && QStringView(format).mid(i + 1).startsWith(u'{')) {
            text += u'{';
            ++i;
        } else if (end < 0) {
            text += format[i];
        } else {
            text += fill(format.mid(i + 1, end - i - 1));
            i = end;
        }
    }
    return text;
}

const char *levelOf(double share)
{
    if (share >= 0.8)
        return "high";
    return share >= 0.5 ? "medium" : "low";
}

} // namespace

std::optional<QString> unknownPlaceholder(const QString &format)
{
    std::optional<QString> unknown;
    filled(format, [&](const QString &name) {
        const auto isCalled = [&](const Placeholder &one) {
            return name == QLatin1String(one.name);
        };
        const auto isName = [&](const char *one) { return name == QLatin1String(one); };
        if (!unknown && std::ranges::none_of(toolPlaceholders, isCalled)
            && std::ranges::none_of(otherPlaceholders, isName))
            unknown = name;
        return QString();
    });
    return unknown;
}

QByteArray statusText(const command::Status &options, const std::optional<UsageSnapshot> &stored,
                      Instant now)
{
    std::vector<ProviderUsageSummary> summaries;
    if (stored)
        summaries = stored->summary(options.window, now, QTimeZone::utc()).activeProviders();
    if (options.provider)
        std::erase_if(summaries, [&](const ProviderUsageSummary &summary) {
            return summary.provider != *options.provider;
        });
    std::vector<ToolStatus> tools;
    for (const ProviderUsageSummary &summary : summaries)
        tools.emplace_back(summary, now);

    const bool isStale = stored
        && (now - stored->generatedAt > staleAfter
            || std::ranges::any_of(tools, &ToolStatus::isOver));
    const QString age = stored ? formatAge(stored->generatedAt, now) : QString();
    const QString stale = isStale ? formatText("status.stale.format", {age}) : QString();

    QStringList brief;
    QStringList full;
    for (const ToolStatus &tool : tools) {
        brief += tool.brief();
        full += tool.full();
    }
    const auto most = std::ranges::max_element(tools, {}, &ToolStatus::share);
    QString text = displayText("common.noData");
    if (most != tools.end()) {
        text = filled(options.format, [&](const QString &name) -> QString {
            for (const Placeholder &one : toolPlaceholders) {
                if (name == QLatin1String(one.name))
                    return one.text(*most);
            }
            if (name == QLatin1String("all"))
                return brief.join(QStringLiteral("  "));
            if (name == QLatin1String("window"))
                return shortLabel(options.window);
            return name == QLatin1String("age") ? age : stale;
        });
        if (isStale && !options.format.contains(QLatin1String("{stale}")))
            text += u' ' + stale;
    }
    if (!options.asJson)
        return printable(text).toUtf8() + '\n';

    const double share = most != tools.end() ? most->share() : 0;
    QJsonArray classes{QString::fromLatin1(most != tools.end() ? levelOf(share) : "empty")};
    if (isStale)
        classes.append(QStringLiteral("stale"));
    if (!full.isEmpty())
        full.prepend(shortLabel(options.window));
    if (isStale)
        full += stale;
    const QJsonObject bar{
        {QLatin1String("text"), printable(text)},
        {QLatin1String("alt"), most != tools.end() ? most->id() : QString()},
        {QLatin1String("tooltip"), full.join(u'\n')},
        {QLatin1String("class"), classes},
        {QLatin1String("percentage"),
         static_cast<int>(std::ceil(std::clamp(share, 0.0, 1.0) * 100))},
    };
    return QJsonDocument(bar).toJson(QJsonDocument::Compact) + '\n';
}

int runStatus(const command::Status &options, const Host &host, Instant now)
{
    return print(statusText(options, readSnapshot(StorageLocations(host)), now));
}

} // namespace tallyglass
