#include "app/DemoHome.h"

#include "model/IsoDateTime.h"
#include "model/UsageJson.h"
#include "platform/Host.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <cmath>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

QString unixSeconds(Instant instant)
{
    return QString::number(instant.time_since_epoch() / 1s);
}

/// Writes a file, in folders that it makes.
void write(const QString &path, const QString &text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(text.toUtf8());
}

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

QString claudeTranscript(Instant now)
{
    constexpr std::array models{"claude-opus-4-5", "claude-sonnet-4-5", "claude-haiku-4-5"};
    QString lines;
    std::size_t next = 0;
    for (const auto &[ago, amount] : workingHours()) {
        const QString model = QString::fromLatin1(models[next++ * 2 / 3 % models.size()]);
        lines +=
            QStringLiteral(R"({"type":"assistant","timestamp":"%1","message":{"model":"%2",)"
                           R"("usage":{"input_tokens":%3,"output_tokens":%4,)"
                           R"("cache_creation_input_tokens":%5,"cache_read_input_tokens":%6}}})"
                           "\n")
                .arg(formatIsoDateTime(now - ago), model)
                .arg(amount * 16)
                .arg(amount * 60)
                .arg(amount * 90)
                .arg(amount * 700);
    }
    return lines;
}

/// Codex names the model in other lines than the tokens.
QString codexRollout(Instant now)
{
    QString lines;
    for (const auto &[ago, amount] : workingHours()) {
        lines +=
            QStringLiteral(R"({"timestamp":"%1","type":"event_msg","payload":{)"
                           R"("type":"token_count","info":{"last_token_usage":{)"
                           R"("input_tokens":%2,"output_tokens":%3,"total_tokens":%4}},)"
                           R"("rate_limits":{"plan_type":"plus",)"
                           R"("primary":{"used_percent":64.0,"window_minutes":300,"resets_at":%5},)"
                           R"("secondary":{"used_percent":38.0,"window_minutes":10080,)"
                           R"("resets_at":%6}}}})"
                           "\n")
                .arg(formatIsoDateTime(now - ago))
                .arg(amount * 640)
                .arg(amount * 50)
                .arg(amount * 690)
                .arg(unixSeconds(now + 107min), unixSeconds(now + 3 * 24h + 290min));
    }
    return lines;
}

QString copilotSession(Instant end, const QString &model, int amount)
{
    return QStringLiteral(R"({"type":"session.shutdown","timestamp":"%1","data":{"modelMetrics":{)"
                          R"("%2":{"usage":{"inputTokens":%3,"outputTokens":%4}}}}})"
                          "\n")
        .arg(formatIsoDateTime(end), model)
        .arg(amount * 310)
        .arg(amount * 35);
}

void writeCopilotSessions(const QString &home, Instant now)
{
    int session = 0;
    for (const auto &[ago, amount] : workingHours()) {
        const QString model =
            ++session % 3 == 0 ? QStringLiteral("claude-haiku-4.5") : QStringLiteral("gpt-5-mini");
        write(home + QStringLiteral("/.copilot/session-state/demo-%1/events.jsonl").arg(session),
              copilotSession(now - ago, model, amount));
    }
}

QString statuslineLimits(Instant now)
{
    return QStringLiteral(
               R"({"timestamp":%1,"rate_limits":{)"
               R"("five_hour":{"used_percentage":83,"window_minutes":300,"resets_at":%2},)"
               R"("seven_day":{"used_percentage":57,"window_minutes":10080,"resets_at":%3}}})")
        .arg(unixSeconds(now - 2min), unixSeconds(now + 48min),
             unixSeconds(now + 4 * 24h + 130min));
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
QString history(Instant now)
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
    return QString::fromUtf8(QJsonDocument(toJson(samples)).toJson(QJsonDocument::Compact));
}

/// Stand-ins, which are looked for but do nothing when they are run.
void writeTools(const QString &home)
{
    for (const char *name : {"claude", "codex", "copilot"}) {
        const QString path = home + QStringLiteral("/.local/bin/") + QString::fromLatin1(name);
        write(path, QStringLiteral("#!/bin/sh\n"));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
}

} // namespace

DemoHome::DemoHome(Instant now)
    : m_folder(QDir::tempPath() + QStringLiteral("/tallyglass-demo-XXXXXX"))
{
    const QString data = path() + QStringLiteral("/Library/Application Support/Tallyglass");
    write(path() + QStringLiteral("/.claude/projects/-home-ada-webshop/session.jsonl"),
          claudeTranscript(now));
    write(path() + QStringLiteral("/.codex/sessions/rollout-demo.jsonl"), codexRollout(now));
    writeCopilotSessions(path(), now);
    write(data + QStringLiteral("/statusline_rate_limits.json"), statuslineLimits(now));
    write(data + QStringLiteral("/usage_history.json"), history(now));
    writeTools(path());
    // As of somebody who is logged in and uses the bridge. The token opens nothing.
    write(path() + QStringLiteral("/.claude/.credentials.json"),
          QStringLiteral(R"({"claudeAiOauth":{"accessToken":"demo","expiresAt":%1}})")
              .arg(unixSeconds(now + 24h)));
    write(path() + QStringLiteral("/.claude/settings.json"),
          QStringLiteral(R"({"statusLine":{"type":"command",)"
                         R"("command":"tallyglass-statusline-bridge.py"}})"));
}

} // namespace tallyglass
