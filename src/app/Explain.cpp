#include "app/Explain.h"

#include "app/Output.h"
#include "app/Terminal.h"
#include "app/TerminalText.h"
#include "app/TextTable.h"
#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "model/IsoDateTime.h"
#include "model/UsageJson.h"
#include "services/Explanation.h"
#include "store/SnapshotFile.h"

#include <QDateTime>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace tallyglass {

namespace {

constexpr std::size_t recordsShown = 20;
constexpr std::size_t otherLimitsShown = 3;

QString pathText(const std::string &path)
{
    return QFile::decodeName(path.c_str());
}

QString localDate(Instant date, const QTimeZone &zone)
{
    return QDateTime::fromMSecsSinceEpoch(date.time_since_epoch().count(), zone)
        .toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

/// The limit of the stored snapshot, which the panel shows, if none of the logs states it: the
/// usage endpoint has told it.
std::optional<RateLimitUsage> endpointLimit(const Explanation &explanation,
                                            const std::optional<UsageSnapshot> &stored,
                                            UsageWindowKind window, Instant now,
                                            const QTimeZone &zone)
{
    if (!stored || explanation.provider != UsageProvider::Claude)
        return std::nullopt;
    const auto limit = stored->summary(window, now, zone).summary(explanation.provider).rateLimit;
    const auto isStated = [&](const LimitReading &reading) {
        const auto seconds = [](const std::optional<Instant> &date) {
            return date ? std::optional{std::chrono::floor<std::chrono::seconds>(*date)}
                        : std::nullopt;
        };
        return reading.limit.usedPercent == limit->usedPercent
            && seconds(reading.limit.resetDate) == seconds(limit->resetDate);
    };
    return limit && std::ranges::none_of(explanation.limits, isStated) ? limit : std::nullopt;
}

class Explainer
{
public:
    Explainer(const command::Explain &options, const QString &home,
              const std::optional<UsageSnapshot> &stored, Instant now, const QTimeZone &zone)
        : m_options(options)
        , m_home(home)
        , m_now(now)
        , m_zone(zone)
        , m_stored(stored)
        , m_style(styleOfStandardOutput())
    {
    }

    QString text(const Explanation &explanation) const
    {
        using Column = TextTable::Column;
        TextTable table({Column::Figure, Column::Text, Column::Text, Column::Path});
        const auto &all = explanation.contributions;
        const std::size_t shown =
            m_options.showsAll ? all.size() : std::min(all.size(), recordsShown);
        TokenUsage others;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (i < shown)
                table.row({fullCount(all[i].tokens.totalTokens()), localDate(all[i].date, m_zone),
                           printable(all[i].model.value_or(QStringLiteral("--"))),
                           place(all[i].path, all[i].line)});
            else
                others = others + all[i].tokens;
        }
        if (shown < all.size())
            table.row(
                {fullCount(others.totalTokens()),
                 {},
                 {},
                 formatText("explain.others.format", {fullCount(count(all.size() - shown))})});
        table.row({fullCount(explanation.sum.totalTokens()),
                   {},
                   {},
                   formatText("explain.sum.format", {fullCount(count(all.size()))})});

        QString text = shortLabel(m_options.window) + QStringLiteral("  ")
            + displayName(explanation.provider) + u'\n' + table.text(m_style.width);
        return m_options.model ? text : text + limitText(explanation);
    }

    QByteArray json(const Explanation &explanation) const
    {
        QByteArray lines;
        const auto add = [&](const char *kind, QJsonObject object) {
            object.insert(QLatin1String("kind"), QLatin1String(kind));
            object.insert(QLatin1String("window"), rawValue(m_options.window));
            object.insert(QLatin1String("provider"), rawValue(explanation.provider));
            lines += QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
        };
        for (const Contribution &one : explanation.contributions) {
            QJsonObject record{{QLatin1String("file"), pathText(one.path)},
                               {QLatin1String("line"), qint64{one.line}},
                               {QLatin1String("date"), formatIsoDateTime(one.date)},
                               {QLatin1String("tokens"), toJson(one.tokens)},
                               {QLatin1String("total"), qint64{one.tokens.totalTokens()}}};
            if (one.model)
                record.insert(QLatin1String("model"), *one.model);
            add("record", record);
        }
        add("sum",
            {{QLatin1String("records"), count(explanation.contributions.size())},
             {QLatin1String("tokens"), toJson(explanation.sum)},
             {QLatin1String("total"), qint64{explanation.sum.totalTokens()}}});
        if (m_options.model)
            return lines;
        bool isInForce = true;
        for (const LimitReading &reading : explanation.limits) {
            add("limit",
                {{QLatin1String("file"), pathText(reading.path)},
                 {QLatin1String("line"), qint64{reading.line}},
                 {QLatin1String("date"), formatIsoDateTime(reading.date)},
                 {QLatin1String("limit"), toJson(reading.limit)},
                 {QLatin1String("isInForce"), std::exchange(isInForce, false)},
                 {QLatin1String("ageSeconds"),
                  qint64{std::chrono::floor<std::chrono::seconds>(m_now - reading.date).count()}},
                 {QLatin1String("resetHasPassed"), hasPassed(reading.limit)}});
        }
        if (const auto limit =
                endpointLimit(explanation, m_stored, m_options.window, m_now, m_zone))
            add("endpointLimit",
                {{QLatin1String("limit"), toJson(*limit)},
                 {QLatin1String("date"), formatIsoDateTime(m_stored->generatedAt)},
                 {QLatin1String("resetHasPassed"), hasPassed(*limit)}});
        return lines;
    }

private:
    static qint64 count(std::size_t size) { return static_cast<qint64>(size); }

    bool hasPassed(const RateLimitUsage &limit) const
    {
        return limit.resetDate && *limit.resetDate <= m_now;
    }

    /// "~/.claude/projects/…/1.jsonl:12"
    QString place(const std::string &path, std::uint32_t line) const
    {
        QString text = pathText(path);
        if (text.startsWith(m_home + u'/'))
            text.replace(0, m_home.size(), QStringLiteral("~"));
        return printable(text) + u':' + QString::number(line);
    }

    QString shareText(const RateLimitUsage &limit) const
    {
        const QString share =
            limit.isPercentKnown() ? formatPercent(limit.usedPercent) : QStringLiteral("--");
        const auto plan = limit.planDisplayName();
        return share + QStringLiteral("  ") + limit.windowLabel()
            + (plan ? u' ' + printable(*plan) : QString());
    }

    QString resetText(const RateLimitUsage &limit) const
    {
        if (!limit.resetDate)
            return displayText("explain.noReset");
        const QString date = localDate(*limit.resetDate, m_zone);
        return hasPassed(limit) ? formatText("explain.resetPassed.format", {date})
                                : formatText("explain.reset.format",
                                             {date, formatResetCountdown(*limit.resetDate, m_now)});
    }

    QString limitText(const Explanation &explanation) const
    {
        using Column = TextTable::Column;
        const auto &limits = explanation.limits;
        TextTable inForce({Column::Text, Column::Text, Column::Path});
        if (limits.empty()) {
            inForce.line(displayText("explain.noLimit"));
        } else {
            inForce.row({displayText("limit.window.unknown"), shareText(limits[0].limit),
                         place(limits[0].path, limits[0].line)});
            addDates(inForce, limits[0].date, limits[0].limit);
        }
        TextTable others({Column::Text, Column::Text, Column::Path});
        if (limits.size() > 1)
            others.line(
                QStringLiteral("  ")
                + formatText("explain.otherLimits.format", {fullCount(count(limits.size() - 1))}));
        const std::size_t shown =
            m_options.showsAll ? limits.size() : std::min(limits.size(), 1 + otherLimitsShown);
        for (std::size_t i = 1; i < shown; ++i)
            others.row({QStringLiteral("    ") + localDate(limits[i].date, m_zone),
                        shareText(limits[i].limit), place(limits[i].path, limits[i].line)});
        if (const auto limit =
                endpointLimit(explanation, m_stored, m_options.window, m_now, m_zone)) {
            others.line(formatText("explain.endpointLimit.format", {shareText(*limit)}));
            addDates(others, m_stored->generatedAt, *limit);
        }
        return inForce.text(m_style.width) + others.text(m_style.width);
    }

    void addDates(TextTable &table, Instant read, const RateLimitUsage &limit) const
    {
        table.line(
            QStringLiteral("  ")
            + formatText("explain.read.format", {localDate(read, m_zone), formatAge(read, m_now)}));
        table.line(QStringLiteral("  ") + resetText(limit));
    }

    const command::Explain &m_options;
    const QString &m_home;
    Instant m_now;
    const QTimeZone &m_zone;
    const std::optional<UsageSnapshot> &m_stored;
    TableStyle m_style;
};

void keepModel(Explanation &explanation, const QString &model)
{
    std::erase_if(explanation.contributions,
                  [&](const Contribution &one) { return one.model != model; });
    explanation.sum = {};
    for (const Contribution &one : explanation.contributions)
        explanation.sum = explanation.sum + one.tokens;
}

} // namespace

int runExplain(const command::Explain &options, Instant now)
{
    const QTimeZone zone = systemZone();
    std::optional<UsageSnapshot> stored;
    QString home;
    auto explanations =
        collectFromHome(options.inDemoHome, [&](const Host &host, CollectionProgress &progress) {
            stored = readSnapshot(StorageLocations(host));
            home = host.homeFolder;
            return explain(host, options.window, now, zone, options.counting, progress);
        });
    const Explainer explainer(options, home, stored, now, zone);
    QByteArray output;
    for (Explanation &explanation : explanations) {
        if (options.provider && explanation.provider != *options.provider)
            continue;
        if (options.model)
            keepModel(explanation, *options.model);
        if (options.asJson)
            output += printableJson(explainer.json(explanation));
        else
            output += (output.isEmpty() ? "" : "\n") + explainer.text(explanation).toUtf8();
    }
    return print(output);
}

} // namespace tallyglass
