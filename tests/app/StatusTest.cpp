#include "app/Status.h"

#include "model/Pace.h"
#include "support/Table.h"
#include "support/Texts.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

using namespace tallyglass;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

namespace {

const Instant now = test::at("2026-02-12T09:10:00Z");

/// Codex at 60 percent after half of its five hours, Claude by estimate; taken \a age ago.
UsageSnapshot snapshot(std::chrono::minutes age)
{
    UsageSnapshot snapshot = UsageSnapshot::empty(now - age, QTimeZone::utc());
    auto &providers = snapshot.summaries.front().providers;
    providers[0].rateLimit =
        RateLimitUsage{.usedPercent = 0.6, .resetDate = now + 150min, .windowMinutes = 300};
    providers[1].tokens.inputTokens = 1'500;
    providers[1].budgetTokens = 5'000;
    return snapshot;
}

} // namespace

struct PaceRow
{
    const char *name;
    double used;
    std::optional<std::chrono::minutes> untilReset;
    std::optional<std::int64_t> windowMinutes;
    const char *text;
};

struct FormatRow
{
    const char *name;
    QString format;
    std::chrono::minutes age;
    QString text;
};

class StatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pace_data()
    {
        test::table<PaceRow>({
            {"half used in half the time", 0.5, 150min, 300, "100%"},
            {"used up before the reset", 0.6, 150min, 300, "120%（1hで上限）"},
            {"much too fast", 0.9, 270min, 300, "900%（3mで上限）"},
            {"used up already", 1.0, 150min, 300, "200%"},
            {"nothing used", 0, 30min, 300, "0%"},
            {"a tenth has passed", 0.02, 270min, 300, "20%"},
            {"less than a tenth", 0.02, 271min, 300, "--"},
            {"the reset has passed", 0.5, 0min, 300, "--"},
            {"no reset", 0.5, std::nullopt, 300, "--"},
            {"no length", 0.5, 150min, std::nullopt, "--"},
            {"a length beyond reason", 0.5, 150min, std::int64_t{1} << 62, "--"},
        });
    }
    void pace()
    {
        const auto row = test::currentRow<PaceRow>();
        RateLimitUsage limit{.usedPercent = row.used, .windowMinutes = row.windowMinutes};
        if (row.untilReset)
            limit.resetDate = now + *row.untilReset;
        const auto found = paceOf(limit, now);
        QCOMPARE(found ? paceText(*found, now) : u"--"_s, QString::fromUtf8(row.text));
        limit.percentKnown = false;
        QVERIFY(!paceOf(limit, now));
    }

    void format_data()
    {
        test::table<FormatRow>({
            {"all tools", u"{all}"_s, 1min, u"Codex 60%  Claude ~30%"_s},
            {"the one used most", u"{tool}|{percent}|{tokens}|{reset}|{pace}"_s, 1min,
             u"Codex|60%|0|2h|120%（1hで上限）"_s},
            {"of the snapshot", u"{window} {age}{stale}"_s, 15min, u"5h 15分前"_s},
            {"braces", u"{{{window}} { x"_s, 1min, u"{5h} { x"_s},
            {"old figures say so", u"{percent}"_s, 16min, u"60% （16分前のデータ）"_s},
            {"where they are told to", u"{stale}{percent}"_s, 16min, u"（16分前のデータ）60%"_s},
        });
    }
    void format()
    {
        const auto row = test::currentRow<FormatRow>();
        QVERIFY(!unknownPlaceholder(row.format));
        QCOMPARE(QString::fromUtf8(statusText({.format = row.format}, snapshot(row.age), now)),
                 row.text + u'\n');
    }

    void bar()
    {
        const auto line =
            statusText({.provider = UsageProvider::Codex, .asJson = true}, snapshot(20min), now);
        QCOMPARE(line.count('\n'), 1);
        const QJsonObject json = QJsonDocument::fromJson(line).object();
        QCOMPARE(json[u"text"_s].toString(), u"Codex 60% （20分前のデータ）"_s);
        QCOMPARE(json[u"alt"_s].toString(), u"codex"_s);
        QCOMPARE(json[u"percentage"_s].toInt(), 60);
        QCOMPARE(json[u"class"_s].toVariant().toStringList(),
                 (QStringList{u"medium"_s, u"stale"_s}));
        QVERIFY(json[u"tooltip"_s].toString().contains(u"120%"_s));
        QVERIFY(!json[u"tooltip"_s].toString().contains(u"Claude"_s));
        auto reset = snapshot(1min);
        reset.summaries.front().providers[0].rateLimit->resetDate = now;
        QCOMPARE(statusText({}, reset, now),
                 QByteArray("Codex 60%  Claude ~30% （1分前のデータ）\n"));
        QCOMPARE(statusText({}, std::nullopt, now), QByteArray("データなし\n"));
        QCOMPARE(unknownPlaceholder(u"{tool} {cost}"_s), u"cost"_s);
    }
};

QTEST_GUILESS_MAIN(StatusTest)
#include "StatusTest.moc"
