#include "services/ClaudeUsageAPI.h"

#include "support/FakePorts.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

using test::FakePorts;

struct TokenRow
{
    const char *name;
    const char *keychain; ///< null: no item
    const char *file; ///< null: no file
    const char *token; ///< that is sent, null when none is
    ClaudeUsageAPIStatus status;
};

struct ShareRow
{
    const char *name;
    const char *window; ///< of the answer's "five_hour"
    std::optional<double> share;
    std::optional<Instant> resetDate;
};

struct StatusRow
{
    const char *name;
    HttpReply reply;
    ClaudeUsageAPIStatus status;
    std::chrono::seconds pause; ///< for which nothing more is sent
};

const ClaudeUsageAPIStatus ok = apistatus::Ok{fromUnixNumber(1'714'566'600).value()};
constexpr auto goodToken = R"({"claudeAiOauth":{"accessToken":"good"}})";
constexpr auto oldToken = R"({"accessToken":"old","expiresAt":1714566600})";

} // namespace

class ClaudeUsageAPITest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsTheToken_data()
    {
        test::table<TokenRow>({
            {"nowhere", nullptr, nullptr, nullptr, apistatus::NoToken{}},
            {"keychain before file", goodToken, R"({"accessToken":"other"})", "good", ok},
            {"item without token", R"({"accessToken":""})", goodToken, "good", ok},
            {"item that is no JSON", "good", goodToken, "good", ok},
            {"expired in the keychain is final", oldToken, goodToken, nullptr,
             apistatus::TokenExpired{}},
            {"expired in the file", nullptr, oldToken, nullptr, apistatus::TokenExpired{}},
            {"milliseconds, one second left", nullptr,
             R"({"accessToken":"a","expiresAt":1714566601000})", "a", ok},
            {"numeric string", nullptr, R"({"accessToken":"a","expiresAt":"1714566600"})", nullptr,
             apistatus::TokenExpired{}},
            {"never expires", nullptr, R"({"accessToken":"a","expiresAt":0})", "a", ok},
            {"half a file", nullptr, R"({"accessToken":"a")", nullptr, apistatus::NoToken{}},
        });
    }
    void findsTheToken()
    {
        const auto row = test::currentRow<TokenRow>();
        const test::TemporaryHome home;
        FakePorts fake(home.path());
        if (row.keychain)
            fake.keychain.items.insert(QStringLiteral("Claude Code-credentials"), row.keychain);
        if (row.file)
            home.write(QStringLiteral(".claude/.credentials.json"), row.file);
        fake.http.replies = {{200, "{}"}};

        ClaudeUsageAPI api(fake.ports.host, fake.clock, fake.http, &fake.keychain);
        QCoro::waitFor(api.fetchLimits());
        QVERIFY(api.status() == row.status);
        QCOMPARE(fake.http.requests.size(), std::size_t{row.token ? 1U : 0U});
        if (!row.token)
            return;
        const HttpRequest expected{
            .url = QUrl(QStringLiteral("https://api.example/api/oauth/usage")),
            .headers = {{"Authorization", QByteArray("Bearer ") + row.token},
                        {"anthropic-beta", "oauth-2025-04-20"},
                        {"User-Agent", "claude-code/2.0.0 (external; Tallyglass)"},
                        {"Content-Type", "application/json"}},
            .followsRedirects = false,
            .timeout = 15s,
        };
        QVERIFY(fake.http.requests.front() == expected);
    }

    void sendsNoTokenInTheClear()
    {
        const test::TemporaryHome home;
        home.write(QStringLiteral(".claude/.credentials.json"), goodToken);
        FakePorts fake(home.path());
        fake.ports.host.claudeApi = QStringLiteral("http://api.example");
        ClaudeUsageAPI api(fake.ports.host, fake.clock, fake.http, &fake.keychain);
        QCoro::waitFor(api.fetchLimits());
        QVERIFY(fake.http.requests.empty());
        QVERIFY(api.status() == ClaudeUsageAPIStatus{apistatus::NetworkError{}});
    }

    void pausesAfterEachAnswer_data()
    {
        test::table<StatusRow>({
            {"good", {200, R"({"seven_day":{"utilization":42}})"}, ok, 60s},
            {"no answer", {}, apistatus::NetworkError{}, 60s},
            {"too many requests", {429, {}}, apistatus::Http{429}, 300s},
            {"redirect", {302, {}}, apistatus::Http{302}, 60s},
            {"no content", {204, {}}, apistatus::Http{204}, 60s},
            {"not JSON", {200, "<html>"}, apistatus::ParseFailed{}, 60s},
            {"an array", {200, "[]"}, apistatus::ParseFailed{}, 60s},
        });
    }
    void pausesAfterEachAnswer()
    {
        const auto row = test::currentRow<StatusRow>();
        const test::TemporaryHome home;
        home.write(QStringLiteral(".claude/.credentials.json"), goodToken);
        FakePorts fake(home.path());
        fake.http.replies = {row.reply, {200, R"({"five_hour":{"utilization":1}})"}};
        ClaudeUsageAPI api(fake.ports.host, fake.clock, fake.http, &fake.keychain);

        const auto first = QCoro::waitFor(api.fetchLimits());
        fake.clock.advance(row.pause - 1ms);
        QVERIFY(QCoro::waitFor(api.fetchLimits()) == first);
        QCOMPARE(fake.http.requests.size(), std::size_t{1});
        QVERIFY(api.status() == row.status);

        fake.clock.advance(1ms);
        const auto second = QCoro::waitFor(api.fetchLimits());
        QCOMPARE(second.size(), std::size_t{1});
        QCOMPARE(second[0].usedPercent, 0.01);
        QVERIFY(std::holds_alternative<apistatus::Ok>(api.status()));
    }

    void aClockSetBackEndsThePause()
    {
        const test::TemporaryHome home;
        FakePorts fake(home.path());
        ClaudeUsageAPI api(fake.ports.host, fake.clock, fake.http, &fake.keychain);
        QCoro::waitFor(api.fetchLimits());
        home.write(QStringLiteral(".claude/.credentials.json"), goodToken);
        fake.clock.advance(-24h);
        fake.http.replies = {{200, "{}"}};
        QCoro::waitFor(api.fetchLimits());
        QCOMPARE(fake.http.requests.size(), std::size_t{1});
    }

    void readsTheAnswer_data()
    {
        const Instant reset = fromUnixNumber(1'775'890'800).value();
        test::table<ShareRow>({
            {"percent", R"({"utilization":33.0})", 0.33, {}},
            {"full", R"({"utilization":100})", 1.0, {}},
            {"fraction", R"({"utilization":0.5})", 0.5, {}},
            {"one is one percent", R"({"utilization":1})", 0.01, {}},
            {"below none", R"({"utilization":-3})", 0.0, {}},
            {"beyond ten times", R"({"utilization":5000})", 10.0, {}},
            {"numeric string", R"({"used_percent":"42"})", 0.42, {}},
            {"null counts as absent", R"({"utilization":null,"used_percent":7})", 0.07, {}},
            {"unreadable does not", R"({"utilization":true,"used_percent":7})", {}, {}},
            {"six digits of a second",
             R"({"utilization":2,"resets_at":"2026-04-11T07:00:00.528743+00:00"})", 0.02,
             reset + 528ms},
            {"no fraction", R"({"utilization":2,"resetsAt":"2026-04-11T07:00:00Z"})", 0.02, reset},
            {"seconds", R"({"utilization":2,"resets_at":1775890800})", 0.02, reset},
            {"milliseconds", R"({"utilization":2,"resets_at":1775890800000})", 0.02, reset},
            {"unreadable date", R"({"utilization":2,"resets_at":"soon"})", 0.02, {}},
            {"not an object", "7", {}, {}},
        });
    }
    void readsTheAnswer()
    {
        const auto row = test::currentRow<ShareRow>();
        const auto limits = limitsFromAnswer(QByteArray(R"({"five_hour":)") + row.window
                                             + R"(,"seven_day":{"utilization":9}})");
        QVERIFY(limits.has_value());
        const RateLimitUsage &last = limits->back();
        QCOMPARE(last.windowMinutes, std::optional<std::int64_t>{10'080});
        QCOMPARE(limits->size(), std::size_t{row.share ? 2U : 1U});
        if (row.share) {
            const RateLimitUsage expected{.usedPercent = *row.share,
                                          .resetDate = row.resetDate,
                                          .windowMinutes = 300,
                                          .percentKnown = true};
            QVERIFY(limits->front() == expected);
        }
    }
};

QTEST_GUILESS_MAIN(ClaudeUsageAPITest)
#include "ClaudeUsageAPITest.moc"
