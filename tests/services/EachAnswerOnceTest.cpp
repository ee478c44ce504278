#include "model/IsoDateTime.h"
#include "services/Audit.h"
#include "services/Explanation.h"
#include "services/TakeSnapshot.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>

#include <map>
#include <random>

using namespace tallyglass;
using namespace Qt::StringLiterals;

namespace {

QByteArray line(const QJsonObject &record)
{
    return QJsonDocument(record).toJson(QJsonDocument::Compact) + '\n';
}

/// Writes sessions in which every kind of copy occurs, and knows what was really asked and
/// answered.
class Copyist
{
public:
    explicit Copyist(unsigned seed)
        : m_random(seed)
    {
    }

    /// A session, its sub-agent retold in it, and another one that resumes it.
    void writeClaude(const test::TemporaryHome &home, int session)
    {
        const QString folder = u".claude/projects/p%1/"_s.arg(session);
        QByteArray transcript;
        QByteArray agent;
        QByteArray resumed;
        // A relay names all answers alike, and no request.
        const bool isRelay = below(3) == 0;
        for (int answer = 0; answer < 20; ++answer) {
            const QString id = isRelay ? u"msg_relay"_s : u"msg_%1_%2"_s.arg(session).arg(answer);
            QJsonObject usage{{u"input_tokens"_s, 1 + answer},
                              {u"cache_creation_input_tokens"_s, below(9'000)},
                              {u"cache_read_input_tokens"_s, isRelay ? session * 100 + answer : 7},
                              {u"output_tokens"_s, 500 + below(9'000)}};
            claude += usage[u"input_tokens"_s].toInteger() + usage[u"output_tokens"_s].toInteger()
                + usage[u"cache_creation_input_tokens"_s].toInteger()
                + usage[u"cache_read_input_tokens"_s].toInteger();
            const QJsonObject complete = usage;

            const bool isOfAgent = below(4) == 0;
            QByteArray blocks;
            for (int block = below(4); block >= 0; --block) {
                const auto record = [&](const QJsonObject &used, bool hasRequest) {
                    QJsonObject whole{
                        {u"timestamp"_s, nextDate()},
                        {u"message"_s, QJsonObject{{u"id"_s, id}, {u"usage"_s, used}}}};
                    if (!isRelay && hasRequest)
                        whole[u"requestId"_s] = u"req_"_s + id;
                    return whole;
                };
                usage[u"output_tokens"_s] = block > 0 ? below(500) : complete[u"output_tokens"_s];
                blocks += line(record(usage, true));
                if (isOfAgent) // progress tells it to the session, without the request
                    transcript +=
                        line({{u"type"_s, u"progress"_s},
                              {u"data"_s, QJsonObject{{u"message"_s, record(usage, false)}}}});
            }
            (isOfAgent ? agent : transcript) += blocks;
            if (isOfAgent)
                transcript += line({{u"type"_s, u"user"_s},
                                    {u"timestamp"_s, nextDate()},
                                    {u"toolUseResult"_s, QJsonObject{{u"usage"_s, complete}}}});
            else if (below(2) == 0)
                resumed += blocks;
        }
        home.write(folder + u"a.jsonl"_s, transcript);
        home.write(folder + u"a/subagents/agent-1.jsonl"_s, agent);
        home.write(folder + u"b.jsonl"_s, resumed);
    }

    /// A thread with repeats, a fork that replays some of it under new dates and goes on, and a
    /// sub-agent of that fork.
    void writeCodex(const test::TemporaryHome &home, int thread)
    {
        std::vector<QJsonObject> calls;
        QJsonObject total;
        const auto call = [&] {
            const int input = 1'000 + below(9'000);
            const int output = 1 + below(900);
            const QJsonObject last{{u"input_tokens"_s, input},
                                   {u"cached_input_tokens"_s, below(input)},
                                   {u"output_tokens"_s, output},
                                   {u"total_tokens"_s, input + output}};
            for (const QString &key : last.keys())
                total[key] = total[key].toInteger() + last[key].toInteger();
            codex += input + output;
            codexCached += last[u"cached_input_tokens"_s].toInteger();
            calls.push_back(
                {{u"type"_s, u"token_count"_s},
                 {u"info"_s,
                  QJsonObject{{u"last_token_usage"_s, last}, {u"total_token_usage"_s, total}}}});
        };
        QJsonValue source = u"cli"_s;
        for (int generation = 0; generation < 3; ++generation) {
            QJsonObject meta{{u"source"_s, source}};
            if (generation == 1)
                meta[u"forked_from_id"_s] = u"1"_s;
            QByteArray lines = line({{u"type"_s, u"session_meta"_s}, {u"payload"_s, meta}});
            const auto replayed = calls.size();
            for (int own = below(15); own >= 0; --own)
                call();
            for (std::size_t i = 0; i < calls.size(); ++i) {
                for (int times = i < replayed ? 0 : below(3); times >= 0; --times)
                    lines += line({{u"timestamp"_s, nextDate()}, {u"payload"_s, calls[i]}});
            }
            home.write(u".codex/sessions/2026/rollout-%1-%2.jsonl"_s.arg(thread).arg(generation),
                       lines);
            source = QJsonObject{{u"subagent"_s, u"review"_s}};
        }
        lastTotals += total[u"total_tokens"_s].toInteger();
    }

    /// Runs of one session, one after the other.
    void writeCopilot(const test::TemporaryHome &home, int session)
    {
        QByteArray lines;
        for (int run = below(5); run >= 0; --run) {
            const int input = 1'000 + below(9'000);
            const int output = 100 + below(900);
            const QJsonObject usage{{u"inputTokens"_s, input},
                                    {u"outputTokens"_s, output},
                                    {u"cacheReadTokens"_s, input / 2},
                                    {u"cacheWriteTokens"_s, input / 4},
                                    {u"reasoningTokens"_s, output / 3}};
            lines +=
                line({{u"type"_s, u"session.shutdown"_s},
                      {u"timestamp"_s, nextDate()},
                      {u"data"_s,
                       QJsonObject{{u"modelMetrics"_s,
                                    QJsonObject{{u"m"_s, QJsonObject{{u"usage"_s, usage}}}}}}}});
            copilot += input + output;
            copilotOutput += output;
        }
        home.write(u".copilot/session-state/%1/events.jsonl"_s.arg(session), lines);
    }

    // Tokens really used.
    qint64 claude = 0;
    qint64 codex = 0;
    qint64 codexCached = 0;
    qint64 lastTotals = 0; ///< what the last thread of each family states
    qint64 copilot = 0;
    qint64 copilotOutput = 0;

private:
    int below(int bound) { return static_cast<int>(m_random() % static_cast<unsigned>(bound)); }

    QString nextDate()
    {
        m_date += std::chrono::milliseconds{1};
        return formatIsoDateTime(m_date);
    }

    std::mt19937 m_random;
    Instant m_date = test::at("2026-02-12T09:00:00Z");
};

const Instant now = test::at("2026-02-12T09:10:00Z");
const QTimeZone zone("Asia/Tokyo");

/// Five hours of one tool.
ProviderUsageSummary counted(const test::TemporaryHome &home, UsageProvider provider,
                             Counting counting)
{
    CollectionProgress progress;
    return takeSnapshot({.homeFolder = home.path()}, now, zone, progress, counting)
        .summaries.front()
        .summary(provider);
}

/// Whether the line that a record is said to stand in states its output.
bool statesOutput(const Contribution &record)
{
    QFile file(QString::fromStdString(record.path));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = file.readAll().split('\n').value(qsizetype{record.line} - 1);
    return line.contains("utput") && line.contains(QByteArray::number(record.tokens.outputTokens));
}

} // namespace

class EachAnswerOnceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsWhatWasUsedAmongTheCopies()
    {
        for (unsigned seed = 0; seed < 8; ++seed) {
            const test::TemporaryHome home;
            Copyist copyist(seed);
            for (int session = 0; session < 5; ++session) {
                copyist.writeClaude(home, session);
                copyist.writeCodex(home, session);
                copyist.writeCopilot(home, session);
            }
            CollectionProgress progress;
            const WindowUsageSummary counted = takeSnapshot({.homeFolder = home.path()}, now, zone,
                                                            progress, Counting::EachAnswerOnce)
                                                   .summaries.front();
            QCOMPARE(counted.summary(UsageProvider::Claude).tokens.totalTokens(), copyist.claude);
            const TokenUsage codex = counted.summary(UsageProvider::Codex).tokens;
            QCOMPARE(codex.totalTokens(), copyist.codex);
            QCOMPARE(codex.totalTokens(), copyist.lastTotals);
            QCOMPARE(codex.counterSum(), copyist.codex);
            QCOMPARE(codex.cacheReadTokens, copyist.codexCached);
            const TokenUsage copilot = counted.summary(UsageProvider::Copilot).tokens;
            QCOMPARE(copilot.totalTokens(), copyist.copilot);
            QCOMPARE(copilot.outputTokens, copyist.copilotOutput);
        }
    }

    void explanationsAndAuditAddUp()
    {
        const test::TemporaryHome home;
        Copyist copyist(99);
        copyist.writeClaude(home, 1);
        copyist.writeCodex(home, 1);
        home.write(u".codex/sessions/limit.jsonl"_s,
                   R"({"timestamp":"2026-02-12T09:00:00Z","rate_limits":{"used_percent":7}}
{"timestamp":"2026-02-12T09:01:00Z","rate_limits":{"used_percent":8,"window_minutes":300}}
{"timestamp":"2026-02-12T09:02:00Z","rate_limits":{"used_percent":9}})");
        const Host host{.homeFolder = home.path()};
        CollectionProgress progress;
        const Audit audited = audit(host, now, zone, progress);

        std::map<UsageProvider, std::vector<std::int64_t>> totals;
        for (const Counting counting : {Counting::EveryRecord, Counting::EachAnswerOnce}) {
            for (const Explanation &explanation :
                 explain(host, UsageWindowKind::FiveHours, now, zone, counting, progress)) {
                const auto summary = counted(home, explanation.provider, counting);
                QCOMPARE(explanation.sum, summary.tokens);
                QCOMPARE(explanation.contributions.size(),
                         static_cast<std::size_t>(summary.eventCount));
                for (const Contribution &record : explanation.contributions)
                    QVERIFY2(record.tokens.outputTokens == 0 || statesOutput(record),
                             record.path.c_str());
                totals[explanation.provider].push_back(explanation.sum.totalTokens());
                if (explanation.provider == UsageProvider::Codex) {
                    QCOMPARE(explanation.limits.size(), std::size_t{3});
                    QCOMPARE(explanation.limits.front().limit, *summary.rateLimit);
                    QCOMPARE(explanation.limits.front().line, 2U);
                    QCOMPARE(explanation.limits[1].line, 3U);
                }
            }
        }
        for (const AuditedUsage &usage : audited.usages) {
            QCOMPARE((std::vector{usage.everyRecord, usage.eachAnswerOnce}),
                     totals[usage.provider]);
            std::int64_t difference = 0;
            for (const Difference &one : usage.differences)
                difference += one.tokens;
            QCOMPARE(difference, usage.everyRecord - usage.eachAnswerOnce);
            const auto isFound = [&](DifferenceCause cause) {
                return usage.differences[static_cast<std::size_t>(cause)].tokens > 0;
            };
            using enum DifferenceCause;
            const bool isClaude = usage.provider == UsageProvider::Claude;
            for (const DifferenceCause cause : {Block, Resumed, InnerCopy})
                QCOMPARE(isFound(cause), isClaude);
            for (const DifferenceCause cause : {Repeat, Replay})
                QCOMPARE(isFound(cause), usage.provider == UsageProvider::Codex);
            QVERIFY(!isFound(StatedTotal));
        }
    }

    void auditNamesWhatIsNotRead()
    {
        const test::TemporaryHome home;
        home.write(u".claude/a.jsonl"_s, "{}\n\n{\"a\":1}\n[1]\n");
        home.write(u".claude/b.jsonl"_s, "{}\n{]\nword\n{\"a\":");
        home.write(u".claude/c.jsonl"_s, "{\"a\":\"\xff\"}\n");
        home.write(u".claude/d.log"_s, "starting\n");
        home.write(u".claude/e.json"_s, "{\n\"a\":1\n}\n");
        home.write(u".claude/f.json"_s, "{\n}\n{\n}\n");
        home.write(u".codex/sessions/g.jsonl.zst"_s, "x");
        QFile large(home.write(u".codex/sessions/h.jsonl"_s));
        QVERIFY(large.resize(largestFileRead + 1));

        CollectionProgress progress;
        QStringList found;
        for (const PassedOverLog &log :
             audit({.homeFolder = home.path()}, now, zone, progress).passedOver) {
            QString text = QFileInfo(QString::fromStdString(log.path)).fileName();
            text += u' ' + QString::number(static_cast<int>(log.reason));
            for (const std::uint32_t line : log.lines)
                text += u':' + QString::number(line);
            found += text;
        }
        using enum PassedOverLog::Reason;
        const auto expected = u"b.jsonl %1:2:3, b.jsonl %2:4, c.jsonl %3, f.json %1:1, "
                              "g.jsonl.zst %4, h.jsonl %5"_s.arg(int(BrokenLines))
                                  .arg(int(TornLine))
                                  .arg(int(NotUtf8))
                                  .arg(int(Compressed))
                                  .arg(int(TooLarge));
        QCOMPARE(found.join(u", "_s), expected);
    }

    void limitsOfCopiesStillHold()
    {
        const test::TemporaryHome home;
        const auto record = [](const char *date, const char *share) {
            return QByteArray(R"({"timestamp":"2026-02-12T09:0DATE:00Z","payload":{"type":
                "token_count","info":{"total_token_usage":{"input_tokens":9},"last_token_usage":
                {"input_tokens":9}},"rate_limits":{"primary":{"used_percent":SHARE,
                "window_minutes":300}}}})")
                       .replace("DATE", date)
                       .replace("SHARE", share)
                       .replace("\n                ", "")
                + '\n';
        };
        home.write(QStringLiteral(".codex/sessions/a.jsonl"),
                   record("1", "20") + record("2", "40"));
        QCOMPARE(test::toText(counted(home, UsageProvider::Codex, Counting::EachAnswerOnce)),
                 QStringLiteral("9/0/0/0 in 1 events, (0.4 300min)"));
        QCOMPARE(test::toText(counted(home, UsageProvider::Codex, Counting::EveryRecord)),
                 QStringLiteral("18/0/0/0 in 2 events, (0.4 300min)"));
    }
};

QTEST_GUILESS_MAIN(EachAnswerOnceTest)
#include "EachAnswerOnceTest.moc"
