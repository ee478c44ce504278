#include "collect/RecordParser.h"

#include "collect/FieldAliases.h"
#include "json/JsonReader.h"
#include "support/Table.h"
#include "support/Texts.h"

#include <QTimeZone>

using namespace tallyglass;

namespace {

/// The events of one record, as text.
QString walk(const QByteArray &json, UsageProvider provider = UsageProvider::Claude,
             const QTimeZone &zone = QTimeZone("Asia/Tokyo"))
{
    JsonReader reader(countingFields);
    QByteArray text = json + QByteArray(JsonReader::padding, '\0');
    const auto *record = reader.parse({text.data(), static_cast<std::size_t>(json.size())});
    if (!record)
        return QStringLiteral("no record");
    NameTable names;
    std::vector<UsageEvent> events;
    parseRecord(*record,
                {.provider = provider, .fileDate = test::fileDate, .zone = zone, .names = names},
                events);
    return test::toText(events);
}

} // namespace

struct RecordRow
{
    const char *name;
    QByteArray json;
    const char *events;
    UsageProvider provider = UsageProvider::Claude;
};

/// A record in which one value changes.
struct ValueRow
{
    const char *name;
    const char *value;
    const char *read;
};

struct ClockRow
{
    const char *name;
    const char *zone;
    const char *reading;
    const char *events;
};

class RecordParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tokens_data()
    {
        const QByteArray manyMembers = QByteArray(R"("x":{},)").repeated(40);
        test::table<RecordRow>({
            {"aliases are summed",
             R"({"input_tokens":1,"prompt_tokens":2,"output_tokens":4,"completion_tokens":8,
                 "cache_creation_input_tokens":16,"cache_creation_tokens":32,
                 "cache_read_input_tokens":64,"cache_read_tokens":128})",
             "claude 3/12/48/192"},
            {"a member without a name", R"({"":1,"input_tokens":5})", "claude 5/0/0/0"},
            {"zeros are no use", R"({"usage":{"input_tokens":0,"output_tokens":0}})", ""},
            {"a total alone is use", R"({"usage":{"input_tokens":0,"total_tokens":7}})",
             "claude 0/0/0/0=7"},
            {"a total of zero is none", R"({"input_tokens":2,"total_tokens":0})", "claude 2/0/0/0"},
            {"usage before own counters", R"({"usage":{"input_tokens":1},"input_tokens":5})",
             "claude 1/0/0/0"},
            {"own counters when usage has none", R"({"usage":{},"input_tokens":5})",
             "claude 5/0/0/0"},
            {"usage is not walked",
             R"({"usage":{"input_tokens":1,"iterations":[{"input_tokens":1}]}})", "claude 1/0/0/0"},
            {"usage as a list is neither read nor walked", R"({"usage":[{"input_tokens":1}]})", ""},
            {"any depth, lists too", R"([[{"a":[{"b":{"input_tokens":1}}]}],{"output_tokens":2}])",
             "claude 1/0/0/0; claude 0/2/0/0"},
            {"outer before inner", R"({"m":{"input_tokens":2},"input_tokens":1})",
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"camel case is no alias", R"({"inputTokens":1,"totalTokens":2})", ""},
            {"of repeated counters the last", R"({"input_tokens":1,"input_tokens":2})",
             "claude 2/0/0/0"},
            {"of repeated objects the last", R"({"m":{"input_tokens":1},"m":{"input_tokens":2}})",
             "claude 2/0/0/0"},
            {"an object replaced by a number", R"({"m":{"input_tokens":1},"m":3})", ""},
            {"the last of many members",
             "{" + manyMembers + R"("m":{"input_tokens":1},"m":{"input_tokens":2}})",
             "claude 2/0/0/0"},
            {"many members, replaced by a number",
             "{" + manyMembers + R"("m":{"input_tokens":1},"m":3})", ""},
            {"deeper than the parser goes",
             QByteArray(R"({"input_tokens":1,"m":)") + QByteArray("[").repeated(1'100)
                 + QByteArray("]").repeated(1'100) + "}",
             "no record"},
        });
    }
    void tokens()
    {
        const auto row = test::currentRow<RecordRow>();
        QCOMPARE(walk(row.json, row.provider), QString::fromUtf8(row.events));
    }

    void counter_data()
    {
        test::table<ValueRow>({
            {"fraction is cut", "1.9", "1"},
            {"negative fraction is cut toward zero", "-1.9", "-1"},
            {"exponent", "25e2", "2500"},
            {"largest", "9223372036854775807", "9223372036854775807"},
            {"smallest", "-9223372036854775808", "-9223372036854775808"},
            {"beyond by one", "9223372036854775808", "0"},
            {"beyond unsigned", "18446744073709551616", "0"},
            {"beyond below", "-9223372036854775809", "0"},
            {"beyond as a fraction", "9.3e18", "0"},
            {"beyond a double", "1e400", "0"},
            {"thirty digits", "100000000000000000000000000000", "0"},
            {"string", R"("12")", "12"},
            {"string with plus", R"("+12")", "12"},
            {"string with minus", R"("-12")", "-12"},
            {"string with two signs", R"("+-12")", "0"},
            {"string with a blank", R"(" 12")", "0"},
            {"string of a fraction", R"("1.5")", "0"},
            {"string beyond", R"("9223372036854775808")", "0"},
            {"true is no number", "true", "0"},
            {"null", "null", "0"},
            {"object", R"({"value":3})", "0"},
        });
    }
    void counter()
    {
        const auto row = test::currentRow<ValueRow>();
        // A stated total keeps the event, whatever the counter is.
        const QByteArray json =
            QByteArray(R"({"total_tokens":1,"input_tokens":)") + row.value + "}";
        QCOMPARE(walk(json), QStringLiteral("claude %1/0/0/0=1").arg(QString::fromUtf8(row.read)));
    }

    void soundPartsOfALineCount_data()
    {
        test::table<RecordRow>({
            {"first half of a pair", R"({"model":"a\ud83d","input_tokens":3})",
             "claude 3/0/0/0 a\uFFFD"},
            {"second half of a pair", R"({"model":"\uDE00b","input_tokens":3})",
             "claude 3/0/0/0 \uFFFDb"},
            {"two first halves", R"({"model":"\ud83d\ud83d\ude00","input_tokens":3})",
             "claude 3/0/0/0 \uFFFD\U0001F600"},
            {"a half before another escape", R"({"model":"\ud83d\u0041","input_tokens":3})",
             "claude 3/0/0/0 \uFFFDA"},
            {"an escaped backslash is no half", R"({"model":"\\ud83d","x":1e400,"input_tokens":3})",
             R"(claude 3/0/0/0 \ud83d)"},
            {"a number in a string stays", R"({"model":"1e400","x":1e400,"input_tokens":3})",
             "claude 3/0/0/0 1e400"},
            {"a number that is wrong for another reason", R"({"x":01e400,"input_tokens":3})",
             "no record"},
            {"a long number cut off", R"({"input_tokens":3,"x":99999999999999999999)", "no record"},
            {"a sign alone", R"({"x":-,"input_tokens":3})", "no record"},
            {"two records in one line", R"({"input_tokens":1}{"input_tokens":2})", "no record"},
            {"a word", "\"input_tokens\"", "no record"},
        });
    }
    void soundPartsOfALineCount()
    {
        const auto row = test::currentRow<RecordRow>();
        QCOMPARE(walk(row.json), QString::fromUtf8(row.events));
    }

    void date_data()
    {
        test::table<ValueRow>({
            {"seconds", R"("timestamp":1700000000)", "2023-11-14T22:13:20.000Z"},
            {"milliseconds", R"("timestamp":1700000000123)", "2023-11-14T22:13:20.123Z"},
            {"largest number of seconds", R"("timestamp":10000000000)", "2286-11-20T17:46:40.000Z"},
            {"fraction of a second", R"("timestamp":1700000000.123)", "2023-11-14T22:13:20.123Z"},
            {"number in a string", R"("timestamp":"1700000000.5")", "2023-11-14T22:13:20.500Z"},
            {"with its zone", R"("timestamp":"2024-05-01T12:30:00.123-01:00")",
             "2024-05-01T13:30:00.123Z"},
            {"on the user's clock", R"("timestamp":"2024-05-01 12:30:00")",
             "2024-05-01T03:30:00.000Z"},
            {"the user's midnight", R"("timestamp":"2024-05-01")", "2024-04-30T15:00:00.000Z"},
            {"zero falls through", R"("timestamp":0,"created_at":1700000000)",
             "2023-11-14T22:13:20.000Z"},
            {"negative falls through", R"("createdAt":"-5","date":1700000000)",
             "2023-11-14T22:13:20.000Z"},
            {"no date falls through", R"("time":"noon","started_at":1700000000)",
             "2023-11-14T22:13:20.000Z"},
            {"beyond all dates falls through", R"("time":1e300,"request_start_time":1700000000)",
             "2023-11-14T22:13:20.000Z"},
            {"order of keys, not of members", R"("date":1600000000,"timestamp":1700000000)",
             "2023-11-14T22:13:20.000Z"},
        });
    }
    void date()
    {
        const auto row = test::currentRow<ValueRow>();
        QCOMPARE(walk(QByteArray("{") + row.value + R"(,"input_tokens":1})"),
                 QStringLiteral("claude 1/0/0/0 at ") + QString::fromUtf8(row.read));
    }

    void clockChange_data()
    {
        test::table<ClockRow>({
            {"a repeated reading is the first", "Europe/London", "2026-10-25 01:30:00",
             "claude 1/0/0/0 at 2026-10-25T00:30:00.000Z"},
            {"a skipped reading is none", "Europe/London", "2026-03-29 01:30:00", "claude 1/0/0/0"},
            {"a skipped midnight is none", "America/Sao_Paulo", "2018-11-04", "claude 1/0/0/0"},
        });
    }
    void clockChange()
    {
        const auto row = test::currentRow<ClockRow>();
        const auto json = QByteArray(R"({"input_tokens":1,"timestamp":"READING"})")
                              .replace("READING", row.reading);
        QCOMPARE(walk(json, UsageProvider::Claude, QTimeZone(row.zone)),
                 QString::fromUtf8(row.events));
    }

    void inheritance_data()
    {
        test::table<RecordRow>({
            {"date and model from around",
             R"({"timestamp":1700000000,"model":"m","a":{"b":[{"usage":{"input_tokens":1}}]}})",
             "claude 1/0/0/0 m at 2023-11-14T22:13:20.000Z"},
            {"own before inherited",
             R"({"timestamp":1600000000,"model":"m","a":{"timestamp":1700000000,"modelName":"n",
                 "input_tokens":1}})",
             "claude 1/0/0/0 n at 2023-11-14T22:13:20.000Z"},
            {"not from a neighbour", R"([{"timestamp":1700000000,"model":"m"},{"input_tokens":1}])",
             "claude 1/0/0/0"},
            {"unusable model falls through",
             R"({"model":"","model_name":{"id":1},"modelName":"n","input_tokens":1})",
             "claude 1/0/0/0 n"},
            {"provider hint in capitals", R"({"provider":"Anthropic","input_tokens":1})",
             "claude 1/0/0/0", UsageProvider::Codex},
            {"provider hints inside",
             R"({"provider":"openai","a":{"input_tokens":1},"b":{"provider":"github",
                 "c":{"input_tokens":2}}})",
             "codex 1/0/0/0; copilot 2/0/0/0"},
            {"an unknown provider changes nothing", R"({"provider":"azure","input_tokens":1})",
             "codex 1/0/0/0", UsageProvider::Codex},
        });
    }
    void inheritance() { tokens(); }

    void tokenCount_data()
    {
        const QByteArray record =
            R"({"type":"token_count","info":{"total_token_usage":{"input_tokens":9},
                "last_token_usage":{"input_tokens":2,"cached_input_tokens":1,"total_tokens":3}},
                "rate_limits":{"primary":{"used_percent":50.0,"window_minutes":300}}})";
        test::table<RecordRow>({
            {"only the last usage", record, "codex 2/0/0/0=3 (0.5 300min)", UsageProvider::Codex},
            {"another tool's is walked", record,
             "claude 0/0/0/0 (0.5 300min); claude 9/0/0/0; claude 2/0/0/0=3"},
            {"a hint makes it one", R"({"provider":"openai","payload":)" + record + "}",
             "codex 2/0/0/0=3 (0.5 300min)"},
            {"no last usage: walked",
             R"({"type":"token_count","info":{"total_token_usage":{"input_tokens":9}}})",
             "codex 9/0/0/0", UsageProvider::Codex},
            {"the record beside it says the same",
             R"([{"type":"token_usage_record","payload":{"usage":{"input_tokens":2},
                 "thread_token_usage":{"input_tokens":9},"rate_limits":{"used_percent":5}}},
                 {"type":"compacted","latest_token_usage_record":{"usage":{"input_tokens":2}}}])",
             "", UsageProvider::Codex},
            {"another tool's is none",
             R"({"type":"token_usage_record","a":{"latest_token_usage_record":{"input_tokens":2}}})",
             "claude 2/0/0/0"},
            {"limits without info",
             R"({"type":"token_count","info":null,"rate_limits":{"primary":{"resets_at":1700000000},
                 "secondary":null,"credits":{"balance":"546.9"}}})",
             "codex 0/0/0/0 (? until 2023-11-14T22:13:20.000Z)", UsageProvider::Codex},
        });
    }
    void tokenCount() { tokens(); }

    void limits_data()
    {
        test::table<RecordRow>({
            {"members named after their windows",
             R"({"rate_limits":{"five_hour":{"used_percentage":25,"resets_at":1700000000},
                 "seven_day":{"used_percentage":75}}})",
             "claude 0/0/0/0 (0.25 300min until 2023-11-14T22:13:20.000Z) (0.75 10080min)"},
            {"a limit itself", R"({"rate_limits":{"used_percent":10}})", "claude 0/0/0/0 (0.1)"},
            {"a list", R"({"rate_limits":[{"used_percent":10},[{"used_percent":20}]]})",
             "claude 0/0/0/0 (0.1) (0.2)"},
            {"nested objects", R"({"rate_limits":{"a":{"b":{"used_percent":10}},"c":1}})",
             "claude 0/0/0/0 (0.1)"},
            {"both containers, with tokens",
             R"({"input_tokens":1,"rate_limit_info":{"rateLimitType":"five_hour","resetsAt":0,
                 "reset_at":1700000000},"rate_limits":[{"windowMinutes":60}]})",
             "claude 1/0/0/0 (? 60min) (? 300min until 2023-11-14T22:13:20.000Z)"},
            {"the search stops at a limit",
             R"({"rate_limits":{"used_percent":10,"inner":{"used_percent":20}}})",
             "claude 0/0/0/0 (0.1)"},
            {"a container in a container is reported once",
             R"({"rate_limits":{"a":{"rate_limits":{"used_percent":10}}}})",
             "claude 0/0/0/0 (0.1)"},
            {"a limit's own container is one of its own",
             R"({"rate_limits":{"used_percent":10,"rate_limits":{"used_percent":20}}})",
             "claude 0/0/0/0 (0.1); claude 0/0/0/0 (0.2)"},
            {"the info is not walked", R"({"rate_limit_info":{"input_tokens":1}})", ""},
            {"the limits are walked", R"({"rate_limits":{"input_tokens":1}})", "claude 1/0/0/0"},
            {"of repeated containers the last",
             R"({"rate_limits":{"used_percent":10},"rate_limits":{"used_percent":20}})",
             "claude 0/0/0/0 (0.2)"},
            {"own plan, else the nearest around",
             R"({"plan_type":"r","rate_limits":{"plan_type":"c","a":{"used_percent":10,
                 "plan_type":"o"},"b":{"used_percent":20}},"rate_limit_info":{"used_percent":30}})",
             "claude 0/0/0/0 (0.1 o) (0.2 c) (0.3 r)"},
            {"plan and name make no limit", R"({"rate_limits":{"name":"5h","plan_type":"pro"}})",
             ""},
            {"flat members are no limit",
             R"({"rate_limits":{"primary_used_percent":10,"primary_window_minutes":300}})", ""},
            {"a length of zero makes no limit", R"({"rate_limits":{"window_minutes":0}})", ""},
            {"limits outside a container", R"({"five_hour":{"used_percent":10}})", ""},
        });
    }
    void limits() { tokens(); }

    void usedShare_data()
    {
        test::table<ValueRow>({
            {"fraction", "0.5", "0.5"},
            {"percent", "50", "0.5"},
            {"one is a percent", "1", "0.01"},
            {"just below one is a fraction", "0.75", "0.75"},
            {"capped", "250", "1"},
            {"below zero", "-3", "0"},
            {"string", R"("50.0")", "0.5"},
            {"beyond 64 bits", "18446744073709551616", "0"},
            {"a word is none", R"("half")", "?"},
            {"hexadecimal is none", R"("0x10")", "?"},
            {"infinite is none", R"("inf")", "?"},
            {"true is none", "true", "?"},
            {"the other key serves", R"(null,"used_percentage":25)", "0.25"},
        });
    }
    void usedShare()
    {
        const auto row = test::currentRow<ValueRow>();
        const QByteArray json =
            QByteArray(R"({"rate_limits":{"window_minutes":90,"used_percent":)") + row.value + "}}";
        QCOMPARE(walk(json),
                 QStringLiteral("claude 0/0/0/0 (%1 90min)").arg(QString::fromUtf8(row.read)));
    }

    void windowLength_data()
    {
        test::table<ValueRow>({
            {"first key above zero", R"("window_minutes":0,"duration_minutes":"90","period":"5h")",
             " 90min"},
            {"blanks and capitals", R"("window":"Five Hour")", " 300min"},
            {"dash", R"("limit_name":"5-hour window")", " 300min"},
            {"fifteen hours contain five", R"("name":"15h")", " 300min"},
            {"weekly", R"("period":"Weekly limit")", " 10080min"},
            {"seven days", R"("rate_limit_type":"7d")", " 10080min"},
            {"hour contained", R"("name":"1 hour")", " 60min"},
            {"hour is the whole name", R"("name":"hour")", " 60min"},
            {"hourly is none", R"("name":"hourly")", ""},
            {"daily", R"("name":"Daily")", " 1440min"},
            {"a day contained is none", R"("name":"birthday")", ""},
            {"next name when one says nothing", R"("window":"rolling","name":"day")", " 1440min"},
        });
    }
    void windowLength()
    {
        const auto row = test::currentRow<ValueRow>();
        const QByteArray json =
            QByteArray(R"({"rate_limits":{"x":{"used_percent":50,)") + row.value + "}}}";
        QCOMPARE(walk(json),
                 QStringLiteral("claude 0/0/0/0 (0.5%1)").arg(QString::fromUtf8(row.read)));
    }
};

QTEST_GUILESS_MAIN(RecordParserTest)
#include "RecordParserTest.moc"
