#include "support/FakeClock.h"
#include "support/FakeHttp.h"
#include "support/FakePorts.h"
#include "support/TestData.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSignalSpy>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QString feedUrl = QStringLiteral("https://lantern.example/appcast.xml");

/// A checker of Lantern 1.2.9, build 129, and what it is told of the world.
struct Lantern
{
    /// "version build address notes link" of what is offered, "-" for what is absent; empty without
    /// an offer.
    QString check()
    {
        const auto offer = QCoro::waitFor(checker.checkForUpdate());
        if (!offer)
            return {};
        const QString absent = QStringLiteral("-");
        const QString address = offer->appcastURL.toString();
        return QStringList{offer->version, offer->build.value_or(absent),
                           address.mid(address.lastIndexOf(u'/') + 1),
                           offer->releaseNotes.value_or(absent),
                           offer->releaseNotesURL.value_or(QUrl(absent)).toString()}
            .join(u' ');
    }
    /// Lets the feed answer with a file of tests/data/.
    void publish(const char *feed) { http.replies.push_back({200, test::testData(feed)}); }

    Host host{.shortVersion = QStringLiteral("1.2.9"),
              .buildVersion = QStringLiteral("129"),
              .feedUrl = feedUrl,
              .publicKey = QStringLiteral("bm90IGEga2V5")};
    test::FakeClock clock;
    test::FakeHttp http;
    Workers workers{clock};
    AppUpdateChecker checker{clock, http, host, workers};
};

constexpr auto newestInTheMiddle = "feed-newest-in-the-middle.xml";
const QString lantern1210 =
    QStringLiteral("1.2.10 130 Lantern-1.2.10.zip What's new\n• Brighter & warmer light\n"
                   "• No more flicker\nThanks to our testers! "
                   "https://lantern.example/notes/1.2.10.html");

} // namespace

class UpdateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void offers()
    {
        const auto offered = [](const char *feed, const char *version, const char *build) {
            Lantern lantern;
            lantern.host.shortVersion = QString::fromUtf8(version);
            lantern.host.buildVersion = QString::fromUtf8(build);
            lantern.publish(feed);
            return lantern.check();
        };
        const auto *const titlesOnly = "feed-titles-only.xml";
        QCOMPARE(offered(newestInTheMiddle, "1.2.9", "129"), lantern1210);
        QCOMPARE(offered("feed-deltas.xml", "1.2.9", "129"),
                 QStringLiteral("2.0 200 Lantern-2.0.zip - -"));
        QCOMPARE(offered(titlesOnly, "1.2.9", "129"), QStringLiteral("2.0 - appcast.xml - -"));
        QCOMPARE(offered("feed-unsafe-links.xml", "1.2.9", "129"),
                 QStringLiteral("9.0 900 appcast.xml - -"));
        QCOMPARE(offered(newestInTheMiddle, "1.2.8", "130"), QString()); // The build counts.
        QCOMPARE(offered(newestInTheMiddle, "1.3", "99"), lantern1210);
        QCOMPARE(offered(newestInTheMiddle, "1.2.10", ""), QString());
        QCOMPARE(offered(titlesOnly, "2.0", "1"), QString());
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

        Lantern lantern;
        lantern.http.replies.push_back({200, packaging.readAllStandardOutput()});
        const QString offer = lantern.check();
        QVERIFY(offer.startsWith(QStringLiteral(TG_VERSION " 130 update_UpdateTest ")));
        QVERIFY(offer.contains(QStringLiteral("\n• ")) && !offer.contains(u'<'));
    }

    void aFailureKeepsTheAnswer()
    {
        Lantern lantern;
        lantern.publish(newestInTheMiddle);
        QCOMPARE(lantern.check(), lantern1210);
        const QByteArray newer = test::testData("feed-deltas.xml");
        for (const HttpReply &reply :
             {HttpReply{}, {500, newer}, {200, newer.chopped(30)}, {200, "<rss/>"}}) {
            lantern.clock.advance(6h);
            lantern.http.replies.push_back(reply);
            QCOMPARE(lantern.check(), lantern1210);
        }
        lantern.host.buildVersion = QStringLiteral("130"); // It is no longer newer.
        lantern.clock.advance(6h);
        lantern.publish(newestInTheMiddle);
        QCOMPARE(lantern.check(), QString());
    }

    void asksOnceInSixHours()
    {
        Lantern lantern;
        lantern.publish(newestInTheMiddle);
        const auto requestsAfter = [&](std::chrono::milliseconds pause) {
            lantern.clock.advance(pause);
            return lantern.check() == lantern1210 ? lantern.http.requests.size() : 0;
        };
        QCOMPARE(requestsAfter(0s), 1U);
        QCOMPARE(requestsAfter(6h - 1ms), 1U);
        QCOMPARE(requestsAfter(1ms), 2U);
        QCOMPARE(requestsAfter(0s), 2U); // A failure counts, too.
        QCOMPARE(requestsAfter(-1ms), 3U); // A clock set back does not hold it up.
        const HttpRequest request{.url = QUrl(feedUrl), .followsRedirects = true};
        QCOMPARE(lantern.http.requests[0], request);

        for (const char *url : {"", "$(SU_FEED_URL)", "file:///tmp/appcast.xml"}) {
            Lantern other;
            other.host.feedUrl = QString::fromUtf8(url);
            QCOMPARE(other.check(), QString());
            QVERIFY(other.http.requests.empty());
        }
    }

    void updaterNeedsFeedAndKey()
    {
        const Host complete = Lantern().host;
        for (const auto &[url, key] : {std::pair{"not an address", "key"},
                                       {"https://a.example/?channel=$(CHANNEL)", "key"},
                                       {"https://a.example/", " \n\t"},
                                       {"https://a.example/", "$(SU_PUBLIC_ED_KEY)"}}) {
            test::FakeUpdaterEngine engine;
            AppUpdater updater(
                {.feedUrl = QString::fromUtf8(url), .publicKey = QString::fromUtf8(key)}, &engine);
            updater.checkForUpdates();
            QVERIFY(!updater.isConfigured() && !updater.canCheckForUpdates());
            QCOMPARE(engine.starts + engine.checks, 0);
        }
        QVERIFY(!AppUpdater(complete, nullptr).isConfigured());

        test::FakeUpdaterEngine engine;
        AppUpdater updater(complete, &engine);
        const QSignalSpy changed(&updater, &AppUpdater::canCheckForUpdatesChanged);
        QVERIFY(updater.isConfigured() && updater.canCheckForUpdates());
        updater.checkForUpdates();
        QCOMPARE(engine.starts + engine.checks, 2);
        QVERIFY(!updater.canCheckForUpdates()); // while one runs
        engine.setCanCheck(true);
        QVERIFY(updater.canCheckForUpdates());
        QCOMPARE(changed.count(), 2);
    }
};

QTEST_GUILESS_MAIN(UpdateTest)
#include "UpdateTest.moc"
