#include "platform/qt/QtHttpClient.h"

#include "support/LoopbackCertificate.h"
#include "support/LoopbackServer.h"
#include "support/Table.h"

#include <QElapsedTimer>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTimer>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QByteArray okHead = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";
const QByteArray largestBody(largestHttpBody, 'x');

QByteArray okWithBody(const QByteArray &body)
{
    return okHead + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray challenge(const QByteArray &scheme)
{
    return "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: " + scheme
        + "\r\nContent-Length: 2\r\n\r\nno";
}

HttpReply ask(HttpClient &http, HttpRequest request)
{
    return QCoro::waitFor(http.get(std::move(request)));
}

} // namespace

struct ReplyRow
{
    const char *name;
    test::Script script;
    HttpReply reply;
    std::chrono::milliseconds timeout = 30s;
};

class QtHttpClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reply_data()
    {
        const HttpReply none;
        const HttpReply tooLarge{.status = 200, .body = {}};
        test::table<ReplyRow>({
            {"json", test::saying(okWithBody("{}")), {200, "{}"}},
            {"kept open after the answer", test::sayingAndHolding(okWithBody("{}")), {200, "{}"}},
            {"ends where the connection ends", test::saying(okHead + "\r\n{}"), {200, "{}"}},
            {"empty", test::saying(okWithBody({})), {200, {}}},
            {"204", test::saying("HTTP/1.1 204 No Content\r\n\r\n"), {204, {}}},
            {"redirect",
             test::saying("HTTP/1.1 302 Found\r\nLocation: http://127.0.0.1:1/\r\n"
                          "Content-Length: 0\r\n\r\n"),
             {302, {}}},
            {"basic challenge", test::saying(challenge("Basic realm=\"a\"")), {401, "no"}},
            {"digest challenge",
             test::saying(challenge("Digest realm=\"a\", nonce=\"b\", qop=\"auth\"")),
             {401, "no"}},
            {"negotiate challenge", test::saying(challenge("Negotiate")), {401, "no"}},
            {"bearer challenge", test::saying(challenge("Bearer")), {401, "no"}},
            {"404",
             test::saying("HTTP/1.1 404 Not Found\r\nContent-Length: 1\r\n\r\n?"),
             {404, "?"}},
            {"407", test::saying("HTTP/1.1 407 Proxy\r\nContent-Length: 1\r\n\r\n?"), {407, "?"}},
            {"429",
             test::saying("HTTP/1.1 429 Slow\r\nRetry-After: 9\r\nContent-Length: 0\r\n\r\n"),
             {429, {}}},
            {"500", test::saying("HTTP/1.1 500 Oh\r\nContent-Length: 2\r\n\r\noh"), {500, "oh"}},
            {"599", test::saying("HTTP/1.1 599 Oh\r\nContent-Length: 2\r\n\r\noh"), {599, "oh"}},
            {"just small enough", test::saying(okWithBody(largestBody)), {200, largestBody}},
            {"too large", test::sayingAndHolding(okWithBody(largestBody + 'x')), tooLarge},
            {"endless", test::flooding(okHead + "\r\n", largestBody), tooLarge},
            {"compressed unasked stays as it is",
             test::saying(okHead + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n\x1f\x8b"),
             {200, "\x1f\x8b"}},
            {"closed without a word", test::saying({}), none},
            {"reset without a word", test::resettingAfter({}), none},
            {"reset in the head", test::resettingAfter("HTTP/1.1 200"), none},
            {"reset in the body", test::resettingAfter(okHead + "Content-Length: 9\r\n\r\n{}"),
             none},
            {"truncated", test::saying(okHead + "Content-Length: 9\r\n\r\n{}"), none},
            {"truncated error", test::saying("HTTP/1.1 500 Oh\r\nContent-Length: 9\r\n\r\noh"),
             none},
            {"not HTTP", test::saying("220 mail.example ESMTP\r\n\r\n"), none},
            {"endless head", test::flooding("HTTP/1.1 200 OK\r\n", "X-Padding: of no use\r\n"),
             none, 100ms},
            {"silent", test::sayingAndHolding({}), none, 100ms},
            {"silent after the head", test::sayingAndHolding(okHead + "\r\n{"), none, 100ms},
        });
    }

    void reply()
    {
        const auto row = test::currentRow<ReplyRow>();
        test::LoopbackServer server(row.script);
        QtHttpClient http;
        const HttpReply reply = ask(http, {.url = server.url(), .timeout = row.timeout});
        QCOMPARE(reply.status, row.reply.status);
        QVERIFY(reply.body == row.reply.body);
    }

    void theTimeoutIsForTheWholeExchange()
    {
        test::LoopbackServer server([](QTcpSocket &client) {
            client.write(okHead + "\r\n");
            auto *drip = new QTimer(&client);
            QObject::connect(drip, &QTimer::timeout, &client, [&client] { client.write("x"); });
            drip->start(5ms);
        });
        QtHttpClient http;
        QElapsedTimer time;
        time.start();
        QCOMPARE(ask(http, {.url = server.url(), .timeout = 200ms}), HttpReply{});
        QVERIFY(time.elapsed() >= 190);
        QVERIFY(time.elapsed() < 2000);
    }

    void itsEndEndsWhatIsUnderWay()
    {
        test::LoopbackServer server(test::sayingAndHolding(okHead + "\r\n{"));
        auto http = std::make_unique<QtHttpClient>();
        const QCoro::Task<HttpReply> reply = http->get({.url = server.url()});
        QTRY_COMPARE(server.requests.size(), 1);
        http.reset();
        QVERIFY(reply.isReady());
    }

    void sendsTheHeadersOnceAndKeepsNoCookie()
    {
        test::LoopbackServer server(
            test::saying("HTTP/1.1 401 No\r\nSet-Cookie: a=b\r\nWWW-Authenticate: Basic\r\n"
                         "Content-Length: 0\r\n\r\n"));
        QtHttpClient http;
        const HttpRequest request{.url = server.url(), .headers = {{"Authorization", "Bearer t"}}};
        ask(http, request);
        ask(http, request);
        QCOMPARE(server.requests.size(), 2);
        for (const QByteArray &head : std::as_const(server.requests)) {
            QVERIFY(head.startsWith("GET / HTTP/1.1\r\n"));
            QVERIFY(head.contains("\r\nAuthorization: Bearer t\r\n"));
            QVERIFY(!head.contains("Cookie"));
        }
    }

    void redirectsAreFollowedOnlyWhenAsked_data()
    {
        QTest::addColumn<bool>("follows");
        QTest::addColumn<HttpReply>("expected");
        QTest::addColumn<int>("hops");
        QTest::newRow("no: a secret stays here") << false << HttpReply{302, {}} << 0;
        QTest::newRow("yes") << true << HttpReply{200, "there"} << 1;
    }

    void redirectsAreFollowedOnlyWhenAsked()
    {
        QFETCH(bool, follows);
        QFETCH(HttpReply, expected);
        QFETCH(int, hops);
        test::LoopbackServer there(test::saying(okWithBody("there")));
        test::LoopbackServer here(
            test::saying("HTTP/1.1 302 Found\r\nLocation: " + there.url().toEncoded()
                         + "\r\nContent-Length: 0\r\n\r\n"));
        QtHttpClient http;
        QCOMPARE(ask(http, {.url = here.url(), .followsRedirects = follows}), expected);
        QCOMPARE(there.requests.size(), hops);
    }

    void redirectsInACircleEnd()
    {
        test::LoopbackServer server(
            test::saying("HTTP/1.1 302 Found\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n"));
        QtHttpClient http;
        QCOMPARE(ask(http, {.url = server.url(), .followsRedirects = true}), HttpReply{});
        QVERIFY(server.requests.size() <= 10);
    }

    void asksOnlyOverHttp_data()
    {
        QTest::addColumn<QUrl>("url");
        for (const char *url : {"", "file:///etc/hostname", "data:,hello", "ftp://127.0.0.1/",
                                "http:", "//127.0.0.1/", "http://127.0.0.1:1/"})
            QTest::newRow(url) << QUrl(QString::fromLatin1(url));
    }

    void asksOnlyOverHttp()
    {
        QFETCH(QUrl, url);
        QtHttpClient http;
        QCOMPARE(ask(http, {.url = url}), HttpReply{});
    }

    void verifiesTheCertificate_data()
    {
        QTest::addColumn<bool>("isTrusted");
        QTest::addColumn<QString>("host");
        QTest::addColumn<HttpReply>("expected");
        QTest::newRow("unknown issuer") << false << "127.0.0.1" << HttpReply{};
        QTest::newRow("trusted") << true << "127.0.0.1" << HttpReply{200, "{}"};
        QTest::newRow("for another host") << true << "localhost" << HttpReply{};
    }

    void verifiesTheCertificate()
    {
        QFETCH(bool, isTrusted);
        QFETCH(QString, host);
        QFETCH(HttpReply, expected);
        const QSslCertificate certificate(test::loopbackCertificate);
        auto tlsServer = std::make_unique<QSslServer>();
        QSslConfiguration ours = tlsServer->sslConfiguration();
        ours.setLocalCertificate(certificate);
        ours.setPrivateKey(QSslKey(test::loopbackKey, QSsl::Ec));
        tlsServer->setSslConfiguration(ours);
        test::LoopbackServer server(test::saying(okWithBody("{}")), std::move(tlsServer));

        const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
        QSslConfiguration theirs = before;
        if (isTrusted)
            theirs.addCaCertificate(certificate);
        QSslConfiguration::setDefaultConfiguration(theirs);
        QtHttpClient http;
        QUrl url = server.url(QStringLiteral("https"));
        url.setHost(host);
        const HttpReply reply = ask(http, {.url = url});
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(reply, expected);
    }
};

QTEST_GUILESS_MAIN(QtHttpClientTest)
#include "QtHttpClientTest.moc"
