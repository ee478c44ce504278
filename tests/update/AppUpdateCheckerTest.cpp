#include "update/AppUpdateChecker.h"

#include "support/FakeClock.h"
#include "support/FakeHttp.h"
#include "support/Table.h"
#include "support/TestData.h"

#include <QCoreApplication>
#include <QProcess>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

using Answer = std::optional<AppUpdateInfo>;

struct OfferRow
{
    const char *name;
    const char *feed; ///< a file
    const char *shortVersion; ///< of the running program
    const char *buildVersion;
    Answer answer;
};

struct FailureRow
{
    const char *name;
    HttpReply reply;
};

const QString feedUrl = QStringLiteral("https://lantern.example/appcast.xml");

const AppUpdateInfo lantern1210{
    .version = QStringLiteral("1.2.10"),
    .build = QStringLiteral("130"),
    .appcastURL = QUrl(QStringLiteral("https://lantern.example/Lantern-1.2.10.zip")),
    .releaseNotes = QStringLiteral("What's new\n• Brighter & warmer light\n• No more flicker\n"
                                   "Thanks to our testers!"),
    .releaseNotesURL = QUrl(QStringLiteral("https://lantern.example/notes/1.2.10.html")),
};
const AppUpdateInfo lantern20{
    .version = QStringLiteral("2.0"),
    .build = QStringLiteral("200"),
    .appcastURL = QUrl(QStringLiteral("https://lantern.example/Lantern-2.0.zip")),
};
const AppUpdateInfo titleOnly{.version = QStringLiteral("2.0"), .appcastURL = QUrl(feedUrl)};
const AppUpdateInfo unsafe{
    .version = QStringLiteral("9.0"),
    .build = QStringLiteral("900"),
    .appcastURL = QUrl(feedUrl),
};

/// A checker of Lantern 1.2.9, build 129, and what it is told of the world.
struct Fixture
{
    Answer check() { return QCoro::waitFor(checker.checkForUpdate()); }
    /// Lets the feed answer with a file of tests/data/.
    void publish(const char *feed) { http.replies.push_back({200, test::testData(feed)}); }

    Host host{.shortVersion = QStringLiteral("1.2.9"),
              .buildVersion = QStringLiteral("129"),
              .feedUrl = feedUrl};
    test::FakeClock clock;
    test::FakeHttp http;
    AppUpdateChecker checker{clock, http, host};
};

} // namespace

class AppUpdateCheckerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offers_data()
    {
        const auto *const middle = "feed-newest-in-the-middle.xml";
        test::table<OfferRow>({
            {"the newest of the feed", middle, "1.2.9", "129", lantern1210},
            {"the download, not a patch", "feed-deltas.xml", "1.2.9", "129", lantern20},
            {"no address but the feed's", "feed-titles-only.xml", "1.2.9", "129", titleOnly},
            {"no unsafe links", "feed-unsafe-links.xml", "1.2.9", "129", unsafe},
            {"same build, older version", middle, "1.2.8", "130", std::nullopt},
            {"older build, newer version", middle, "1.3", "99", lantern1210},
            {"build unknown, same version", middle, "1.2.10", "", std::nullopt},
            {"no build in the feed", "feed-titles-only.xml", "2.0", "1", std::nullopt},
        });
    }
    void offers()
    {
        const auto row = test::currentRow<OfferRow>();
        Fixture lantern;
        lantern.host.shortVersion = QString::fromUtf8(row.shortVersion);
        lantern.host.buildVersion = QString::fromUtf8(row.buildVersion);
        lantern.publish(row.feed);
        QVERIFY(lantern.check() == row.answer);
    }

    void offersWhatIsPackaged()
    {
        QProcess packaging;
        packaging.start(QStringLiteral(TG_PACKAGING "/make-feed"),
                        {QCoreApplication::applicationFilePath(), QStringLiteral("--version"),
                         QStringLiteral(TG_VERSION), QStringLiteral("--build"),
                         QStringLiteral("130"), QStringLiteral("--folder"),
                         QStringLiteral("https://lantern.example/files/")});
        QVERIFY(packaging.waitForFinished());
        QCOMPARE(packaging.readAllStandardError(), QByteArray());

        Fixture lantern;
        lantern.http.replies.push_back({200, packaging.readAllStandardOutput()});
        const AppUpdateInfo offer = lantern.check().value();
        QCOMPARE(offer.version, QStringLiteral(TG_VERSION));
        QCOMPARE(offer.build, QStringLiteral("130"));
        QCOMPARE(offer.appcastURL,
                 QUrl(QStringLiteral("https://lantern.example/files/update_AppUpdateCheckerTest")));
        QVERIFY(offer.releaseNotes.value().contains(QStringLiteral("\n• ")));
        QVERIFY(!offer.releaseNotes->contains(u'<'));
    }

    void aFailureKeepsTheAnswer_data()
    {
        const QByteArray newer = test::testData("feed-deltas.xml");
        const QByteArray torn = test::testData("feed-newest-in-the-middle.xml").chopped(300);
        test::table<FailureRow>({
            {"no network", {}},
            {"server in trouble", {500, newer}},
            {"torn", {200, torn}},
            {"no items", {200, "<rss/>"}},
        });
    }
    void aFailureKeepsTheAnswer()
    {
        Fixture lantern;
        lantern.publish("feed-newest-in-the-middle.xml");
        QCOMPARE(lantern.check().value(), lantern1210);

        lantern.clock.advance(6h);
        lantern.http.replies.push_back(test::currentRow<FailureRow>().reply);
        QCOMPARE(lantern.check().value(), lantern1210);
        QCOMPARE(lantern.http.requests.size(), 2U);
    }

    void whatIsNoLongerNewerIsForgotten()
    {
        Fixture lantern;
        lantern.publish("feed-newest-in-the-middle.xml");
        QVERIFY(lantern.check());
        lantern.host.buildVersion = QStringLiteral("130");
        lantern.clock.advance(6h);
        lantern.publish("feed-newest-in-the-middle.xml");
        QVERIFY(!lantern.check());
    }

    void asksOnceInSixHours()
    {
        Fixture lantern;
        lantern.publish("feed-newest-in-the-middle.xml");
        QCOMPARE(lantern.check(), Answer(lantern1210));
        const HttpRequest request{.url = QUrl(feedUrl), .followsRedirects = true};
        QCOMPARE(lantern.http.requests, std::vector{request});

        lantern.clock.advance(6h - 1ms);
        QCOMPARE(lantern.check(), Answer(lantern1210));
        QCOMPARE(lantern.http.requests.size(), 1U);
        lantern.clock.advance(1ms);
        lantern.check();
        QCOMPARE(lantern.http.requests.size(), 2U);
        lantern.clock.advance(-1ms); // A clock set back does not hold it up.
        lantern.check();
        QCOMPARE(lantern.http.requests.size(), 3U);
    }

    void asksAWebAddressOnly()
    {
        for (const char *url : {"", "$(SU_FEED_URL)", "file:///tmp/appcast.xml"}) {
            Fixture lantern;
            lantern.host.feedUrl = QString::fromUtf8(url);
            QVERIFY(!lantern.check());
            QVERIFY(lantern.http.requests.empty());
        }
    }
};

QTEST_GUILESS_MAIN(AppUpdateCheckerTest)
#include "AppUpdateCheckerTest.moc"
