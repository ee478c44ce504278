#include "services/ClaudeUsageAPI.h"

#include "support/FakePorts.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

/// The client on a machine of fakes.
struct Client
{
    std::vector<RateLimitUsage> fetch() { return QCoro::waitFor(api.fetchLimits()); }
    void keep(const QByteArray &record)
    {
        fake.keychain.items.insert(QStringLiteral("Claude Code-credentials"), record);
    }
    QByteArray lastToken() const
    {
        return fake.http.requests.empty()
            ? QByteArray()
            : fake.http.requests.back().headers.value("Authorization");
    }

    test::TemporaryHome home;
    test::FakePorts fake{home.path()};
    Workers workers{fake.clock};
    ClaudeUsageAPI api{fake.ports.host, fake.clock, fake.http, fake.ports.keychain, workers};
};

constexpr auto file = ".claude/.credentials.json";

struct TokenRow
{
    const char *name;
    const char *keychain; ///< null: no item
    const char *file; ///< null: no file
    const char *token; ///< that is sent, null when none is
    ClaudeUsageAPIStatus status;
};

struct AnswerRow
{
    const char *name;
    const char *window; ///< of the answer's "five_hour"
    const char *limit; ///< null when there is none
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
        Client client;
        if (row.keychain)
            client.keep(row.keychain);
        if (row.file)
            client.home.write(QString::fromLatin1(file), row.file);
        client.fake.http.replies = {{200, "{}"}};

        client.fetch();
        QVERIFY(client.api.status() == row.status);
        QCOMPARE(client.fake.http.requests.size(), std::size_t{row.token ? 1U : 0U});
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
        QVERIFY(client.fake.http.requests.front() == expected);
    }

    void asksTheKeychainOnceInATokensLife()
    {
        Client client;
        const auto questions = [&client](std::chrono::seconds later) {
            client.fake.clock.advance(later);
            client.fetch();
            return client.fake.keychain.questions.load();
        };
        client.keep(R"({"accessToken":"first","expiresAt":1714570200})"); // in an hour
        QCOMPARE(questions(0s), 1);
        QCOMPARE(questions(300s), 1);
        client.home.write(QString::fromLatin1(file), "{}"); // as when the tool signs in anew
        QCOMPARE(questions(300s), 2);
        client.fake.http.replies = {{401, {}}, {401, {}}};
        QCOMPARE(questions(300s), 2);
        QCOMPARE(questions(300s), 3); // The token may have been replaced,
        QCOMPARE(questions(300s), 3); // which is worth one look.
        QCOMPARE(client.lastToken(), QByteArray("Bearer first"));
        client.keep(R"({"accessToken":"second"})");
        QCOMPARE(questions(1h), 4);
        QCOMPARE(client.lastToken(), QByteArray("Bearer second"));
        client.api.signIn().forget();
        QCOMPARE(questions(300s), 5);
    }

    void goesOnWithoutAKeychainThatDoesNotAnswer()
    {
        Client client;
        client.keep(R"({"accessToken":"kept"})");
        client.home.write(QString::fromLatin1(file), R"({"accessToken":"other"})");
        client.fake.keychain.isSlow = true;
        auto fetching = client.api.fetchLimits();
        QTRY_COMPARE(client.fake.keychain.questions.load(), 1);
        client.fake.clock.advance(10s);
        QTRY_VERIFY(fetching.isReady());
        QCOMPARE(client.lastToken(), QByteArray("Bearer other"));

        // The user's late answer is not lost, and he is not asked a second time.
        client.fake.keychain.answer();
        client.fake.clock.advance(300s);
        client.fetch();
        QCOMPARE(client.lastToken(), QByteArray("Bearer kept"));
        QCOMPARE(client.fake.keychain.questions.load(), 1);
    }

    void sendsNoTokenInTheClear()
    {
        Client client;
        client.keep(goodToken);
        client.fake.ports.host.claudeApi = QStringLiteral("http://api.example");
        client.fetch();
        QVERIFY(client.fake.http.requests.empty());
        QVERIFY(client.api.status() == ClaudeUsageAPIStatus{apistatus::NetworkError{}});
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
        Client client;
        client.keep(goodToken);
        client.fake.http.replies = {row.reply, {200, R"({"five_hour":{"utilization":1}})"}};

        const auto first = client.fetch();
        client.fake.clock.advance(row.pause - 1ms);
        QVERIFY(client.fetch() == first);
        QCOMPARE(client.fake.http.requests.size(), std::size_t{1});
        QVERIFY(client.api.status() == row.status);

        client.fake.clock.advance(1ms);
        const auto second = client.fetch();
        QCOMPARE(second.size(), std::size_t{1});
        QCOMPARE(second[0].usedPercent, 0.01);
        QVERIFY(std::holds_alternative<apistatus::Ok>(client.api.status()));

        client.fake.clock.advance(-24h); // A clock that is set back ends the pause.
        client.fetch();
        QCOMPARE(client.fake.http.requests.size(), std::size_t{3});
    }

    void readsTheAnswer_data()
    {
        constexpr auto dated = "(0.02 300min until 2026-04-11T07:00:00.000Z)";
        test::table<AnswerRow>({
            {"percent", R"({"utilization":33.0})", "(0.33 300min)"},
            {"full", R"({"utilization":100})", "(1 300min)"},
            {"fraction", R"({"utilization":0.5})", "(0.5 300min)"},
            {"one is one percent", R"({"utilization":1})", "(0.01 300min)"},
            {"below none", R"({"utilization":-3})", "(0 300min)"},
            {"beyond ten times", R"({"utilization":5000})", "(10 300min)"},
            {"numeric string", R"({"used_percent":"42"})", "(0.42 300min)"},
            {"null counts as absent", R"({"utilization":null,"used_percent":7})", "(0.07 300min)"},
            {"unreadable does not", R"({"utilization":true,"used_percent":7})", nullptr},
            {"digits of a second",
             R"({"utilization":2,"resets_at":"2026-04-11T07:00:00.000743+00:00"})", dated},
            {"other spelling", R"({"utilization":2,"resetsAt":"2026-04-11T07:00:00Z"})", dated},
            {"seconds", R"({"utilization":2,"resets_at":1775890800})", dated},
            {"milliseconds", R"({"utilization":2,"resets_at":1775890800000})", dated},
            {"unreadable date", R"({"utilization":2,"resets_at":"soon"})", "(0.02 300min)"},
            {"not an object", "7", nullptr},
        });
    }
    void readsTheAnswer()
    {
        const auto row = test::currentRow<AnswerRow>();
        const auto limits = limitsFromAnswer(QByteArray(R"({"five_hour":)") + row.window
                                             + R"(,"seven_day":{"utilization":9}})");
        QVERIFY(limits.has_value());
        QStringList texts;
        for (const RateLimitUsage &limit : *limits)
            texts += test::toText(limit);
        const QStringList week{QStringLiteral("(0.09 10080min)")};
        QCOMPARE(texts, row.limit ? QStringList{QString::fromLatin1(row.limit)} + week : week);
    }
};

QTEST_GUILESS_MAIN(ClaudeUsageAPITest)
#include "ClaudeUsageAPITest.moc"
