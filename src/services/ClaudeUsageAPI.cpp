#include "services/ClaudeUsageAPI.h"

#include "collect/FieldReaders.h"
#include "json/JsonReader.h"
#include "model/UsageWindowKind.h"

#include <QHostAddress>

#include <array>
#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto minInterval = 60s;
constexpr auto pauseAfterTooManyRequests = 300s;

/// The first of two members that is there; null counts as absent.
const JsonValue *either(const JsonValue &object, FieldKey key, FieldKey alternative)
{
    const JsonValue *value = object.find(key);
    return value && value->kind() != JsonValue::Kind::Null ? value : object.find(alternative);
}

std::optional<RateLimitUsage> limitFrom(const JsonValue *window,
                                        std::optional<std::int64_t> minutes)
{
    const JsonValue *object = objectValue(window);
    if (!object)
        return std::nullopt;
    // Other than a log the endpoint tells how far beyond the limit a share is, and writes every
    // date with its zone.
    constexpr double largestShare = 10.0;
    const auto share = usedShare(either(*object, "utilization", "used_percent"), largestShare);
    if (!share)
        return std::nullopt;
    return RateLimitUsage{
        .usedPercent = *share,
        .resetDate = dateValue(either(*object, "resets_at", "resetsAt"), nullptr),
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
                               std::shared_ptr<const Keychain> keychain, Workers &workers)
    : m_host(host)
    , m_clock(clock)
    , m_http(http)
    , m_signIn(host.homeFolder, std::move(keychain), workers)
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

    const auto credentials = co_await m_signIn.find(now);
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
    constexpr int unauthorized = 401;
    constexpr int tooManyRequests = 429;

    if (!reply.status) {
        m_status = apistatus::NetworkError{};
    } else if (*reply.status != success) {
        m_status = apistatus::Http{*reply.status};
        if (*reply.status == tooManyRequests)
            m_throttle.pause(now, pauseAfterTooManyRequests);
        if (*reply.status == unauthorized)
            m_signIn.reject();
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
        FieldKey member;
        UsageWindowKind kind;
    };
    constexpr std::array windows{Window{"five_hour", UsageWindowKind::FiveHours},
                                 Window{"seven_day", UsageWindowKind::Week}};

    constexpr std::array<FieldKey, 2> shareKeys{"utilization", "used_percent"};
    JsonReader reader{FieldSet(shareKeys)};
    const JsonValue *answer =
        objectValue(reader.parseCopy({body.constData(), static_cast<std::size_t>(body.size())}));
    if (!answer)
        return std::nullopt;
    std::vector<RateLimitUsage> limits;
    for (const Window &window : windows) {
        const JsonValue *member = answer->find(window.member);
        if (auto limit = limitFrom(member, factsOf(window.kind).limitMinutes))
            limits.push_back(std::move(*limit));
    }
    return limits;
}

} // namespace tallyglass
