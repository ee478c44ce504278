#include "json/JsonReader.h"

#include "collect/FieldAliases.h"

#include <QTest>
#include <simdjson.h>

#include <random>

using namespace tallyglass;

/// What is JSON, and what is not, is what the library's own parser says.
class JsonReaderTest : public QObject
{
    Q_OBJECT

    static bool isRead(const QByteArray &json)
    {
        // What follows the text must not be taken for a part of it.
        QByteArray text = json + "\"}]:,0" + QByteArray(JsonReader::padding, '}');
        return JsonReader(countingFields)
            .parse({text.data(), static_cast<std::size_t>(json.size())});
    }

    static bool isReadByTheLibrary(const QByteArray &json)
    {
        simdjson::dom::parser parser;
        const simdjson::padded_string text(json.constData(), static_cast<std::size_t>(json.size()));
        simdjson::dom::element value;
        return parser.parse(text).get(value) == simdjson::SUCCESS
            && (value.is_object() || value.is_array());
    }

private Q_SLOTS:
    void readsWhatIsJson()
    {
        constexpr std::string_view characters = "{}[]:,\"\\ \n\t0123456789-+.trufalsn/b\x01";
        // It knows neither of the two exceptions, so what it is asked has none of them.
        const QByteArray sample =
            R"( {"a\\\n":[{"usage":{"input_tokens":12}},[],{},true,false,null,-0.5e-1,"A"],)"
            R"("model":"x\/é" , "b":{"c":{}},"timestamp":1700000000123,)"
            "\"text\":\"longer, \\\"quoted\\\"HERE and with \\u00e9scapes\\\\\\\\\\n in it\"} ";
        std::mt19937 random(1);
        int count = 0;
        for (int round = 0; round < 20'000; ++round) {
            // Puts what follows it at every place of a block.
            QByteArray json = sample;
            json.replace("HERE", QByteArray(static_cast<int>(random() % 64), 'x'));
            for (unsigned changes = random() % 3; changes > 0; --changes) {
                const auto at = static_cast<qsizetype>(random()) % json.size();
                const char character = characters[random() % characters.size()];
                switch (random() % 3) {
                case 0:
                    json[at] = character;
                    break;
                case 1:
                    json.insert(at, character);
                    break;
                default:
                    json.remove(at, 1);
                }
            }
            if (!QUtf8StringView(json).isValidUtf8())
                continue; // No line that is parsed is.
            const bool expected = isReadByTheLibrary(json);
            QVERIFY2(isRead(json) == expected, json.constData());
            count += expected ? 1 : 0;
        }
        QVERIFY(count > 1'000 && count < 19'000);
    }
};

QTEST_GUILESS_MAIN(JsonReaderTest)
#include "JsonReaderTest.moc"
