#include "collect/CopilotLogReader.h"

#include "collect/FieldAliases.h"
#include "json/JsonReader.h"
#include "support/Table.h"
#include "support/Texts.h"

#include <QTimeZone>

using namespace tallyglass;

struct SessionRow
{
    const char *name;
    QList<QByteArray> lines;
    const char *events;
};

namespace {

QByteArray shutdown(const char *time, const char *metrics)
{
    return QByteArray(R"({"type":"session.shutdown","timestamp":")") + time
        + R"(","data":{"modelMetrics":{)" + metrics + "}}}";
}

} // namespace

class CopilotLogReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void session_data()
    {
        constexpr auto one = R"("m":{"usage":{"inputTokens":1}})";
        constexpr auto two = R"("m":{"usage":{"inputTokens":2}})";
        constexpr auto noon = "2026-02-12T12:00:00Z";
        constexpr auto evening = "2026-02-12T18:00:00Z";
        test::table<SessionRow>({
            {"every counter",
             {shutdown(noon, R"("m":{"usage":{"inputTokens":1,"outputTokens":70,
                 "reasoningTokens":30,"cacheWriteTokens":4,"cacheReadTokens":8,
                 "totalTokens":999}})")},
             "copilot 1/100/4/8 m at 2026-02-12T12:00:00.000Z"},
            {"a session still running",
             {R"({"type":"assistant.usage","data":{"inputTokens":1}})",
              R"({"type":"session.shutdowns","data":{"modelMetrics":{"m":{"usage":{"inputTokens":1
                 }}}}})"},
             ""},
            {"the later record holds",
             {shutdown(evening, two), shutdown(noon, one)},
             "copilot 2/0/0/0 m at 2026-02-12T18:00:00.000Z"},
            {"of one date the one further down",
             {shutdown(noon, one), shutdown(noon, two)},
             "copilot 2/0/0/0 m at 2026-02-12T12:00:00.000Z"},
            {"each model by itself",
             {shutdown(noon, R"("a":{"usage":{"inputTokens":1}},"b":{"usage":{"outputTokens":5}})"),
              shutdown(evening, R"("a":{"usage":{"inputTokens":2}})")},
             "copilot 2/0/0/0 a at 2026-02-12T18:00:00.000Z; "
             "copilot 0/5/0/0 b at 2026-02-12T12:00:00.000Z"},
            {"zeros replace nothing",
             {shutdown(noon, one), shutdown(evening, R"("m":{"usage":{"inputTokens":0}})")},
             "copilot 1/0/0/0 m at 2026-02-12T12:00:00.000Z"},
            {"no date: the file's",
             {R"({"type":"session.shutdown","data":{"modelMetrics":{"m":{"usage":{"inputTokens":"3"
                 }}}}})"},
             "copilot 3/0/0/0 m"},
            {"broken records between",
             {R"({"type":"session.shutdown"})",
              R"({"type":"session.shutdown","data":{"modelMetrics":[]}})",
              shutdown(noon, R"("m":{},"n":3,"o":{"usage":null})"), "[" + shutdown(noon, one) + "]",
              shutdown(noon, two)},
             "copilot 2/0/0/0 m at 2026-02-12T12:00:00.000Z"},
            {"a model named twice",
             {shutdown(noon, R"("m":{"usage":{"inputTokens":9}},"m":{"usage":{"inputTokens":1}})")},
             "copilot 1/0/0/0 m at 2026-02-12T12:00:00.000Z"},
        });
    }
    void session()
    {
        const auto row = test::currentRow<SessionRow>();
        const QTimeZone zone("Asia/Tokyo");
        NameTable names;
        const LogOrigin origin{.provider = UsageProvider::Copilot,
                               .fileDate = test::fileDate,
                               .zone = zone,
                               .names = names};
        CopilotLogReader reader(origin);
        JsonReader parser(countingFields);
        for (const QByteArray &line : row.lines) {
            QByteArray text = line + QByteArray(JsonReader::padding, '\0');
            reader.take(*parser.parse({text.data(), static_cast<std::size_t>(line.size())}));
        }
        QCOMPARE(test::toText(reader.events()), QString::fromUtf8(row.events));
    }
};

QTEST_GUILESS_MAIN(CopilotLogReaderTest)
#include "CopilotLogReaderTest.moc"
