#include "collect/LogCollector.h"

#include "collect/LogFiles.h"
#include "support/NastyLogs.h"
#include "support/PlainReader.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <QTimeZone>

#include <map>

using namespace tallyglass;

class LogCollectorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void agreesWithThePlainReader()
    {
        const test::TemporaryHome home;
        for (unsigned seed = 0; seed < 120; ++seed) {
            test::NastyLogs logs(seed);
            const QString name = QString::number(seed);
            home.write(QStringLiteral(".codex/sessions/%1.jsonl").arg(name), logs.lines());
            home.write(QStringLiteral(".claude/%1.ndjson").arg(name), logs.lines());
            home.write(QStringLiteral(".claude/%1.json").arg(name), logs.document());
            home.write(QStringLiteral(".copilot/session-state/%1.json").arg(name), logs.lines());
        }

        const QTimeZone zone("Asia/Tokyo");
        std::array<std::map<std::size_t, std::vector<UsageEvent>>, 2> collected;
        std::vector<EventSink> sinks;
        for (auto &events : collected) {
            sinks.emplace_back([&events](const FileEvents &taken) {
                events[taken.order] = {taken.events.begin(), taken.events.end()};
            });
        }
        CollectionProgress progress;
        collectEvents({.homeFolder = home.path()}, Instant{}, zone, sinks, progress);
        collected[0].merge(collected[1]);

        const auto files = findLogFiles({.homeFolder = home.path()}, Instant{});
        QCOMPARE(files.size(), std::size_t{480});
        QCOMPARE(collected[0].size(), files.size());
        std::map<UsageProvider, std::size_t> eventCounts;
        for (std::size_t i = 0; i < files.size(); ++i) {
            const auto expected = test::readPlainly(files[i], zone);
            if (collected[0][i] != expected) {
                qWarning("%s", files[i].path.c_str());
                QCOMPARE(test::toText(collected[0][i]), test::toText(expected));
                QFAIL("the sources differ");
            }
            eventCounts[files[i].provider] += expected.size();
        }
        for (const UsageProvider provider : allProviders)
            QVERIFY2(eventCounts[provider] > 100, "the logs are too nasty to tell anything");
        QCOMPARE(progress.bytesRead.load(), progress.bytesFound.load());
        QVERIFY(progress.bytesFound > 0);
    }
};

QTEST_GUILESS_MAIN(LogCollectorTest)
#include "LogCollectorTest.moc"
