#include "platform/qt/QtHttpClient.h"

#include "support/LoopbackCertificate.h"
#include "support/LoopbackServer.h"
#include "support/Table.h"

#include <QElapsedTimer>
#include <QLibraryInfo>
#include <QSslCertificate>
#include <QSslKey>
#include <QSslServer>
#include <QTimer>
#include <QVersionNumber>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QByteArray okHead = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n";
const QByteArray largestBody(largestHttpBody, 'x');

QByteArray okWithBody(const QByteArray &body)
{
    return okHead + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QByteArray failed(const QByteArray &status)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: 2\r\n\r\nno";
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
            {"kept open after the answer", test::sayingAndHolding(okWithBody("{}")), {200, "{}"}},
            {"ends where the connection ends", test::saying(okHead + "\r\n{}"), {200, "{}"}},
            {"asked for a password",
             test::saying(failed("401 No\r\nWWW-Authenticate: Basic")),
             {401, "no"}},
            {"an error that Qt names", test::saying(failed("404 Not Found")), {404, "no"}},
            {"one that Qt takes for its own", test::saying(failed("400 Bad")), {400, "no"}},
            {"another", test::saying(failed("418 Teapot")), {418, "no"}},
            {"an error that Qt does not name", test::saying(failed("429 Slow")), {429, "no"}},
            {"server in trouble", test::saying(failed("500 Oh")), {500, "no"}},
            {"just small enough", test::saying(okWithBody(largestBody)), {200, largestBody}},
            {"too large", test::sayingAndHolding(okWithBody(largestBody + 'x')), tooLarge},
            {"endless", test::flooding(okHead + "\r\n", largestBody), tooLarge},
            {"compressed unasked stays as it is",
             test::saying(okHead + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n\x1f\x8b"),
             {200, "\x1f\x8b"}},
            {"closed without a word", test::saying({}), none},
            {"closed in the head", test::saying(okHead.chopped(2)), none},
            {"reset", [](QTcpSocket &client) { client.abort(); }, none},
            {"an interim answer is none", test::saying("HTTP/1.1 103 Hints\r\n\r\n"), none},
            {"too long a head",
             test::saying(okHead + "X: " + QByteArray(70'000, 'x') + "\r\n\r\n{}"), none},
            {"truncated", test::saying(okHead + "Content-Length: 9\r\n\r\n{}"), none},
            {"truncated in a chunk",
             test::saying(okHead + "Transfer-Encoding: chunked\r\n\r\n5\r\n{}"), none},
            {"truncated error", test::saying(failed("500 Oh").chopped(1)), none},
            {"not HTTP", test::saying("220 mail.example ESMTP\r\n\r\n"), none},
            {"endless head", test::flooding("HTTP/1.1 200 OK\r\n", "X-Padding: of no use\r\n"),
             none, 100ms},
            {"silent", test::sayingAndHolding({}), none, 100ms},
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
        // Qt would ask again after some of them. The newest versions do, whatever the body.
        if (QLibraryInfo::version() < QVersionNumber(6, 9))
            QCOMPARE(server.requests.size(), 1);
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
        QVERIFY(time.elapsed() >= 150); // The timer is a coarse one.
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
            QVERIFY(head.toLower().contains("\r\nauthorization: bearer t\r\n"));
            QVERIFY(!head.toLower().contains("cookie"));
        }
    }

    void redirectsAreFollowedOnlyWhenAsked()
    {
        test::LoopbackServer there(test::saying(okWithBody("there")));
        test::LoopbackServer here(
            test::saying("HTTP/1.1 302 Found\r\nLocation: " + there.url().toEncoded()
                         + "\r\nContent-Length: 0\r\n\r\n"));
        QtHttpClient http;
        const HttpReply redirect{302, {}};
        QCOMPARE(ask(http, {.url = here.url()}), redirect);
        QCOMPARE(there.requests.size(), 0); // A secret stays here.
        const HttpReply followed{200, "there"};
        QCOMPARE(ask(http, {.url = here.url(), .followsRedirects = true}), followed);
    }

    void asksOnlyOverHttp()
    {
        QtHttpClient http;
        for (const char *url : {"", "file:///etc/hostname", "data:,hello", "//127.0.0.1/"})
            QCOMPARE(ask(http, {.url = QUrl(QString::fromLatin1(url))}), HttpReply{});
    }

    void verifiesTheCertificate_data()
    {
        QTest::addColumn<bool>("isTrusted");
        QTest::addColumn<HttpReply>("expected");
        QTest::newRow("unknown issuer") << false << HttpReply{};
        QTest::newRow("trusted") << true << HttpReply{200, "{}"};
    }
    void verifiesTheCertificate()
    {
        QFETCH(bool, isTrusted);
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
        const HttpReply reply = ask(http, {.url = server.url(QStringLiteral("https"))});
        QSslConfiguration::setDefaultConfiguration(before);
        QCOMPARE(reply, expected);
    }
};

QTEST_GUILESS_MAIN(QtHttpClientTest)
#include "QtHttpClientTest.moc"
