#include "collect/LogFileReader.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <QTimeZone>

#include <sys/stat.h>

using namespace tallyglass;

namespace {

constexpr qsizetype readAtOnce = 131'072; // bytes that the reader asks for
const QByteArray one = R"({"input_tokens":1})";
const QByteArray two = R"({"input_tokens":2})";

} // namespace

struct ContentRow
{
    const char *name;
    QByteArray content;
    const char *events;
    UsageProvider provider = UsageProvider::Claude;
    bool isDocument = false;
};

class LogFileReaderTest : public QObject
{
    Q_OBJECT

    /// What a file of this content is read as. One reader reads them all, as in a collection.
    QString read(const QByteArray &content, const ContentRow &row)
    {
        m_home.write(QStringLiteral("log"), content);
        return readFile(row);
    }

    QString readFile(const ContentRow &row)
    {
        std::vector<UsageEvent> events;
        m_reader.readLogFile({.provider = row.provider,
                              .path = m_home.path(QStringLiteral("log")).toStdString(),
                              .modified = test::fileDate,
                              .isDocument = row.isDocument},
                             events);
        return test::toText(events);
    }

    test::TemporaryHome m_home;
    QTimeZone m_zone{"Asia/Tokyo"};
    LogFileReader m_reader{m_zone};

private Q_SLOTS:
    void init() { QFile::remove(m_home.path(QStringLiteral("log"))); }

    void lines_data()
    {
        const QByteArray spaces =
            " \t\v\f\r\u0085\u00A0\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000";
        const QByteArray manyLines = QByteArray("plain text\n").repeated(30'000);
        const QByteArray shutdown = R"({"type":"session.shutdown","data":{"modelMetrics":{"m":
            {"usage":{"inputTokens":1}}}}})";
        using enum UsageProvider;
        test::table<ContentRow>({
            {"empty file", "", ""},
            {"no last line feed", one + "\n" + two, "claude 1/0/0/0; claude 2/0/0/0"},
            {"CRLF and empty lines", "\r\n" + one + "\r\n\r\n" + two + "\r\n",
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"a carriage return ends no line", one + "\r" + two, ""},
            {"U+2028 ends no line", "{\"a\":\"\u2028\",\"input_tokens\":1}", "claude 1/0/0/0"},
            {"white space of all kinds around", spaces + one + spaces + "\n" + two,
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"a zero-width space is no white space", "\u200B" + one, ""},
            {"byte order mark", "\uFEFF" + one + "\n" + two, "claude 2/0/0/0"},
            {"NUL bytes", QByteArray(3, '\0') + one + "\n" + two, "claude 2/0/0/0"},
            {"a torn line", one.chopped(1) + "\n" + two, "claude 2/0/0/0"},
            {"a line of a list", "[" + one + "," + two + "]", "claude 1/0/0/0; claude 2/0/0/0"},
            {"text that only looks like a record", "input_tokens\" " + one, ""},
            {"a key written with escapes", R"({"input\u005Ftokens":1})", "claude 1/0/0/0"},

            {"not UTF-8, early", "\xff\n" + one, ""},
            {"not UTF-8, after events were read", one + "\n" + manyLines + "\xc3(\n" + one, ""},
            {"not UTF-8, cut off at the very end", one + "\n\xe3\x81", ""},
            {"not UTF-8: overlong", one + "\n\xc0\xaf\n", ""},
            {"not UTF-8: half of a pair", one + "\n\xed\xa0\x80\n", ""},
            {"not UTF-8 in a session", shutdown.simplified() + "\n\xff", "", Copilot},

            {"document over several lines", "{\n\"a\":\r\n[" + one + "]}\n", "claude 1/0/0/0",
             Claude, true},
            {"document of two lines of records", one + "\n" + two, "", Claude, true},
            {"document not UTF-8", "{\"input_tokens\":1,\"a\":\"\xff\"}", "", Claude, true},
            {"a session is read by lines, whatever its name",
             shutdown.simplified() + "\n" + one + "\n", "copilot 1/0/0/0 m", Copilot, true},
        });
    }
    void lines()
    {
        const auto row = test::currentRow<ContentRow>();
        QCOMPARE(read(row.content, row), QString::fromUtf8(row.events));
    }

    /// Wherever a record stands, it is found: against the borders of what is compared at once.
    void anyOffset_data()
    {
        using enum UsageProvider;
        test::table<ContentRow>({
            {"tokens", one, "claude 1/0/0/0"},
            {"limits", R"({"rate_limits":{"used_percent":50}})", "claude 0/0/0/0 (0.5)"},
            {"limit info", R"({"rate_limit_info":{"used_percent":50}})", "claude 0/0/0/0 (0.5)"},
            {"escaped letter", R"({"\u0069nput_token\u0073":1})", "claude 1/0/0/0"},
            {"metrics",
             R"({"type":"session.shutdown","data":{"modelMetrics":{"m":{"usage":{"inputTokens":1}}}}})",
             "copilot 1/0/0/0 m", Copilot},
        });
    }
    void anyOffset()
    {
        const auto row = test::currentRow<ContentRow>();
        for (qsizetype offset = 0; offset < 160; ++offset) {
            const QByteArray before = QByteArray(offset, 'x') + "\n";
            QCOMPARE(read(before + row.content, row), QString::fromUtf8(row.events));
        }
    }

    /// The same against the border of what is read at once.
    void bufferBorder_data()
    {
        using enum UsageProvider;
        // A question mark is filled so that what follows it lies around the border.
        test::table<ContentRow>({
            {"between lines", "?\n" + one + "\n" + two, "claude 1/0/0/0; claude 2/0/0/0"},
            {"CRLF", "?\r\n" + one + "\r\n" + two, "claude 1/0/0/0; claude 2/0/0/0"},
            {"within a line",
             R"({"a":"?","input_tokens":1})"
             "\n" + two,
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"within a line that follows one", one + "\n" + R"({"a":"?","input_tokens":2})",
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"a character", one + "\n?\u3042\u3042\u3042\n" + two,
             "claude 1/0/0/0; claude 2/0/0/0"},
            {"document", R"({"a":"?","input_tokens":1})", "claude 1/0/0/0", Claude, true},
            {"document of limits", R"({"a":"?","rate_limits":[{"used_percent":50}]})",
             "claude 0/0/0/0 (0.5)", Claude, true},
        });
    }
    void bufferBorder()
    {
        const auto row = test::currentRow<ContentRow>();
        const qsizetype before = row.content.indexOf('?');
        for (qsizetype start = readAtOnce - 45; start <= readAtOnce + 5; ++start) {
            QByteArray content = row.content;
            content.replace("?", QByteArray(start - before, 'x'));
            QCOMPARE(read(content, row), QString::fromUtf8(row.events));
        }
    }

    void largestFile()
    {
        const QString path = m_home.write(QStringLiteral("log"));
        QVERIFY(QFile::resize(path, largestFileRead - one.size() - 1)); // a hole, read as NULs
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write("\n" + one);
        file.close();
        QCOMPARE(QFileInfo(path).size(), largestFileRead);
        QCOMPARE(readFile({}), QStringLiteral("claude 1/0/0/0"));
    }

    void pipeInTheFilesPlaceDoesNotBlock()
    {
        QCOMPARE(mkfifo(m_home.path(QStringLiteral("log")).toLocal8Bit().constData(), 0600), 0);
        QCOMPARE(readFile({}), QString());
    }

    void fileThatIsGone() { QCOMPARE(readFile({}), QString()); }
};

QTEST_GUILESS_MAIN(LogFileReaderTest)
#include "LogFileReaderTest.moc"
