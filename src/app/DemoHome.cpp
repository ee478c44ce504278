#include "app/DemoHome.h"

#include "model/IsoDateTime.h"
#include "model/UsageJson.h"
#include "platform/Host.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

qint64 unixSeconds(Instant instant)
{
    return std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch().count();
}

qint64 minutesOf(UsageWindowKind window)
{
    return factsOf(window).limitMinutes.value_or(0);
}

class LinesFile
{
public:
    explicit LinesFile(const QString &path)
        : m_file(path)
    {
        QDir().mkpath(QFileInfo(path).path());
        m_file.open(QIODevice::WriteOnly);
    }

    void append(const QJsonObject &record)
    {
        m_file.write(QJsonDocument(record).toJson(QJsonDocument::Compact) + '\n');
    }

private:
    QFile m_file;
};

/// One stretch of work: how long ago, and how much of it.
struct WorkingHour
{
    std::chrono::minutes ago;
    int amount; ///< of work, a scale for the token counts
};

/// A month of work: a busy afternoon, and two hours on every day before it.
std::vector<WorkingHour> workingHours()
{
    std::vector<WorkingHour> hours{
        {5min, 42}, {25min, 61}, {70min, 88}, {130min, 54}, {215min, 73}};
    for (int day = 1; day < 30; ++day) {
        const int amount = 30 + day * 37 % 90;
        hours.push_back({.ago = day * 24h + 40min, .amount = amount});
        hours.push_back({.ago = day * 24h + 190min, .amount = amount / 2});
    }
    return hours;
}

void writeClaudeTranscript(const QString &home, Instant now)
{
    constexpr std::array models{"claude-opus-4-5", "claude-sonnet-4-5", "claude-haiku-4-5"};
    LinesFile file(home + QStringLiteral("/.claude/projects/-home-demo-webshop/session.jsonl"));
    std::size_t next = 0;
    for (const auto &[ago, amount] : workingHours()) {
        const QString model = QString::fromLatin1(models[next++ * 2 / 3 % models.size()]);
        const QJsonObject usage{{QStringLiteral("input_tokens"), amount * 16},
                                {QStringLiteral("output_tokens"), amount * 60},
                                {QStringLiteral("cache_creation_input_tokens"), amount * 90},
                                {QStringLiteral("cache_read_input_tokens"), amount * 700}};
        file.append(
            {{QStringLiteral("type"), QStringLiteral("assistant")},
             {QStringLiteral("timestamp"), formatIsoDateTime(now - ago)},
             {QStringLiteral("message"),
              QJsonObject{{QStringLiteral("model"), model}, {QStringLiteral("usage"), usage}}}});
    }
}

QJsonObject codexLimit(double usedPercent, UsageWindowKind window, Instant resetDate)
{
    return {{QStringLiteral("used_percent"), usedPercent},
            {QStringLiteral("window_minutes"), minutesOf(window)},
            {QStringLiteral("resets_at"), unixSeconds(resetDate)}};
}

void writeCodexRollout(const QString &home, Instant now)
{
    const QJsonObject limits{
        {QStringLiteral("primary"), codexLimit(64, UsageWindowKind::FiveHours, now + 107min)},
        {QStringLiteral("secondary"),
         codexLimit(38, UsageWindowKind::Week, now + 3 * 24h + 290min)},
        {QStringLiteral("plan_type"), QStringLiteral("plus")}};
    LinesFile file(home + QStringLiteral("/.codex/sessions/rollout-demo.jsonl"));
    for (const auto &[ago, amount] : workingHours()) {
        const QJsonObject usage{{QStringLiteral("input_tokens"), amount * 640},
                                {QStringLiteral("output_tokens"), amount * 50},
                                {QStringLiteral("total_tokens"), amount * 690}};
        const QJsonObject payload{
            {QStringLiteral("type"), QStringLiteral("token_count")},
            {QStringLiteral("model"), QStringLiteral("gpt-5.1-codex")},
            {QStringLiteral("info"), QJsonObject{{QStringLiteral("last_token_usage"), usage}}},
            {QStringLiteral("rate_limits"), limits}};
        file.append({{QStringLiteral("timestamp"), formatIsoDateTime(now - ago)},
                     {QStringLiteral("type"), QStringLiteral("event_msg")},
                     {QStringLiteral("payload"), payload}});
    }
}

void writeCopilotSessions(const QString &home, Instant now)
{
    int session = 0;
    for (const auto &[ago, amount] : workingHours()) {
        LinesFile file(
            home + QStringLiteral("/.copilot/session-state/demo-%1/events.jsonl").arg(++session));
        const QJsonObject usage{{QStringLiteral("inputTokens"), amount * 310},
                                {QStringLiteral("outputTokens"), amount * 35}};
        const QJsonObject metrics{
            {session % 3 == 0 ? QStringLiteral("claude-haiku-4.5") : QStringLiteral("gpt-5-mini"),
             QJsonObject{{QStringLiteral("usage"), usage}}}};
        file.append(
            {{QStringLiteral("type"), QStringLiteral("session.shutdown")},
             {QStringLiteral("timestamp"), formatIsoDateTime(now - ago)},
             {QStringLiteral("data"), QJsonObject{{QStringLiteral("modelMetrics"), metrics}}}});
    }
}

void writeStatuslineLimits(const QString &home, Instant now)
{
    const auto limit = [](double percentage, UsageWindowKind window, Instant resetDate) {
        return QJsonObject{{QStringLiteral("used_percentage"), percentage},
                           {QStringLiteral("window_minutes"), minutesOf(window)},
                           {QStringLiteral("resets_at"), unixSeconds(resetDate)}};
    };
    LinesFile file(QStringLiteral("%1/%2/%3")
                       .arg(home, QLatin1String(ownFolder), QLatin1String(statuslineFile)));
    file.append({{QStringLiteral("timestamp"), unixSeconds(now - 2min)},
                 {QStringLiteral("rate_limits"),
                  QJsonObject{{QStringLiteral("five_hour"),
                               limit(83, UsageWindowKind::FiveHours, now + 48min)},
                              {QStringLiteral("seven_day"),
                               limit(57, UsageWindowKind::Week, now + 4 * 24h + 130min)}}}});
}

/// A limit that fills evenly and starts anew, at a moment so many minutes ago. \a share is what is
/// used now.
double demoShare(std::chrono::minutes ago, std::chrono::minutes toReset,
                 std::chrono::minutes length, double share)
{
    const double lengths = std::chrono::duration<double>(length - toReset - ago) / length;
    const double window = std::floor(lengths); // 0 is the running one
    const double busy = window == 0 ? 1 : 0.55 + 0.4 * std::sin(window * 2.3);
    const double whole = share / (1 - std::chrono::duration<double>(toReset) / length);
    return std::clamp(whole * busy * (lengths - window), 0.0, 1.0);
}

/// A week of samples, and nights without the program.
void writeHistory(const QString &home, Instant now)
{
    constexpr std::chrono::minutes week = 7 * 24h;
    std::vector<UsageHistorySample> samples;
    for (auto ago = week; ago > 0min; ago -= 11min) {
        if (ago % 24h > 8h && ago % 24h < 17h)
            continue;
        const auto append = [&](UsageProvider provider, double fiveHours, double ofWeek) {
            samples.push_back({.id = QUuid::createUuid(),
                               .date = now - ago,
                               .provider = provider,
                               .fiveHourPercent = fiveHours,
                               .weekPercent = ofWeek});
        };
        append(UsageProvider::Codex, demoShare(ago, 107min, 5h, 0.64),
               demoShare(ago, 3 * 24h + 290min, week, 0.38));
        append(UsageProvider::Claude, demoShare(ago, 48min, 5h, 0.83),
               demoShare(ago, 4 * 24h + 130min, week, 0.57));
        append(UsageProvider::Copilot, demoShare(ago, 150min, 5h, 0.09),
               demoShare(ago, 2 * 24h, week, 0.07));
    }
    const QString folder = home + u'/' + QLatin1String(ownFolder);
    QDir().mkpath(folder);
    QFile file(folder + QStringLiteral("/usage_history.json"));
    file.open(QIODevice::WriteOnly);
    file.write(QJsonDocument(toJson(samples)).toJson(QJsonDocument::Compact));
}

/// Stand-ins, which are looked for but do nothing when they are run.
void writeTools(const QString &home)
{
    const QString folder = home + QStringLiteral("/.local/bin");
    QDir().mkpath(folder);
    for (const UsageProvider provider : allProviders) {
        QFile file(folder + u'/' + QLatin1String(factsOf(provider).executable));
        file.open(QIODevice::WriteOnly);
        file.write("#!/bin/sh\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

/// As of somebody who is logged in and uses the bridge. The token opens nothing.
void writeClaudeSettings(const QString &home, Instant now)
{
    const QJsonObject login{{QStringLiteral("accessToken"), QStringLiteral("demo")},
                            {QStringLiteral("expiresAt"), unixSeconds(now + 24h)}};
    LinesFile(home + QStringLiteral("/.claude/.credentials.json"))
        .append({{QStringLiteral("claudeAiOauth"), login}});
    const QJsonObject statusLine{
        {QStringLiteral("type"), QStringLiteral("command")},
        {QStringLiteral("command"), QStringLiteral("tallyglass-statusline-bridge.py")}};
    LinesFile(home + QStringLiteral("/.claude/settings.json"))
        .append({{QStringLiteral("statusLine"), statusLine}});
}

} // namespace

DemoHome::DemoHome(Instant now)
    : m_folder(QDir::tempPath() + QStringLiteral("/tallyglass-demo-XXXXXX"))
{
    writeClaudeTranscript(path(), now);
    writeCodexRollout(path(), now);
    writeCopilotSessions(path(), now);
    writeStatuslineLimits(path(), now);
    writeHistory(path(), now);
    writeTools(path());
    writeClaudeSettings(path(), now);
}

} // namespace tallyglass
