#include "services/ClaudeUsageAPI.h"

#include "model/IsoDateTime.h"
#include "model/UsageWindowKind.h"
#include "services/ClaudeCredentials.h"
#include "services/JsonNumbers.h"

#include <QCoroFuture>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtConcurrentRun>

#include <algorithm>
#include <array>
#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto minInterval = 60s;
constexpr auto pauseAfterTooManyRequests = 300s;

/// The first of two members that is there; null counts as absent.
QJsonValue either(const QJsonObject &object, QLatin1String key, QLatin1String alternative)
{
    const QJsonValue value = object.value(key);
    return value.isUndefined() || value.isNull() ? object.value(alternative) : value;
}

/// The share as a fraction. The endpoint writes percents, so 1 is one percent; ten times the limit
/// is as much as is shown.
double usedFraction(double value)
{
    return std::clamp(value >= 1.0 ? value / 100 : value, 0.0, 10.0);
}

std::optional<Instant> dateFrom(const QJsonValue &value)
{
    if (value.isString())
        return parseIsoDateTime(value.toString().toStdString());
    const double number = value.toDouble();
    return number > 0 ? std::optional{fromUnixNumber(number)} : std::nullopt;
}

std::optional<RateLimitUsage> limitFrom(const QJsonValue &window,
                                        std::optional<std::int64_t> minutes)
{
    const QJsonObject object = window.toObject();
    const auto share =
        numberFrom(either(object, QLatin1String("utilization"), QLatin1String("used_percent")));
    if (!share)
        return std::nullopt;
    return RateLimitUsage{
        .usedPercent = usedFraction(*share),
        .resetDate =
            dateFrom(either(object, QLatin1String("resets_at"), QLatin1String("resetsAt"))),
        .windowMinutes = minutes,
        .percentKnown = true,
    };
}

/// The token may travel in the clear only within this machine.
bool isSafeForToken(const QUrl &url)
{
    const bool isThisMachine =
        url.host() == QLatin1String("localhost") || QHostAddress(url.host()).isLoopback();
    return url.scheme() == QLatin1String("https")
        || (url.scheme() == QLatin1String("http") && isThisMachine);
}

HttpRequest usageRequest(const QString &api, const QByteArray &token)
{
    return {
        .url = QUrl(api + QStringLiteral("/api/oauth/usage")),
        .headers = {{"Authorization", "Bearer " + token},
                    {"anthropic-beta", "oauth-2025-04-20"},
                    {"User-Agent", "claude-code/2.0.0 (external; Tallyglass)"},
                    {"Content-Type", "application/json"}},
    };
}

} // namespace

ClaudeUsageAPI::ClaudeUsageAPI(const Host &host, Clock &clock, HttpClient &http,
                               const Keychain *keychain)
    : m_host(host)
    , m_clock(clock)
    , m_http(http)
    , m_keychain(keychain)
{
}

QCoro::Task<std::vector<RateLimitUsage>> ClaudeUsageAPI::fetchLimits()
{
    const Instant now = m_clock.now();
    // As const, here and below: QCoro would move from a member that is not.
    if (m_throttle.isPausing(now))
        co_return std::as_const(m_cachedLimits);
    // Set before the first wait, so that a second caller meanwhile is answered from the cache.
    m_throttle.pause(now, minInterval);

    const auto credentials = co_await QtConcurrent::run(
        [this, now] { return findClaudeCredentials(m_host, m_keychain, now); });
    if (!credentials) {
        m_status = apistatus::NoToken{};
    } else if (!credentials->accessToken) {
        m_status = apistatus::TokenExpired{};
    } else {
        HttpRequest request = usageRequest(m_host.claudeApi, *credentials->accessToken);
        HttpReply reply;
        if (isSafeForToken(request.url))
            reply = co_await m_http.get(std::move(request));
        take(reply, now);
    }
    co_return std::as_const(m_cachedLimits);
}

void ClaudeUsageAPI::take(const HttpReply &reply, Instant now)
{
    constexpr int success = 200;
    constexpr int tooManyRequests = 429;

    if (!reply.status) {
        m_status = apistatus::NetworkError{};
    } else if (*reply.status != success) {
        m_status = apistatus::Http{*reply.status};
        if (*reply.status == tooManyRequests)
            m_throttle.pause(now, pauseAfterTooManyRequests);
    } else if (auto limits = limitsFromAnswer(reply.body)) {
        m_cachedLimits = std::move(*limits);
        m_status = apistatus::Ok{now};
    } else {
        m_status = apistatus::ParseFailed{};
    }
}

std::optional<std::vector<RateLimitUsage>> limitsFromAnswer(const QByteArray &body)
{
    struct Window
    {
        const char *member;
        UsageWindowKind kind;
    };
    constexpr std::array windows{Window{"five_hour", UsageWindowKind::FiveHours},
                                 Window{"seven_day", UsageWindowKind::Week}};

    const QJsonDocument document = QJsonDocument::fromJson(body);
    if (!document.isObject())
        return std::nullopt;
    std::vector<RateLimitUsage> limits;
    for (const Window &window : windows) {
        const QJsonValue member = document.object().value(QLatin1String(window.member));
        if (auto limit = limitFrom(member, factsOf(window.kind).limitMinutes))
            limits.push_back(std::move(*limit));
    }
    return limits;
}

} // namespace tallyglass
