#include "app/CommandLine.h"

#include "support/Table.h"

using namespace tallyglass;

struct WordsRow
{
    const char *name;
    const char *words;
    Command command;
};

struct MisuseRow
{
    const char *name;
    const char *words;
    const char *named; ///< what the message must name
};

namespace {

QStringList split(const char *words)
{
    return QString::fromUtf8(words).split(u' ', Qt::SkipEmptyParts);
}

} // namespace

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void understood_data()
    {
        using namespace command;
        using enum UsageWindowKind;
        test::table<WordsRow>({
            {"help", "report --help", Help{}},
            {"short help", "-h", Help{}},
            {"version", "--version", Version{}},
            {"report", "report", Report{}},
            {"one window", "report --window fiveHours", Report{.window = FiveHours}},
            {"of two windows the last", "report --window day --window month",
             Report{.window = Month}},
            {"each answer once", "report --count once",
             Report{.counting = Counting::EachAnswerOnce}},
            {"all options of explain",
             "explain --window day --tool codex --model m --count once --all --demo",
             Explain{.window = Day,
                     .provider = UsageProvider::Codex,
                     .model = QStringLiteral("m"),
                     .counting = Counting::EachAnswerOnce,
                     .showsAll = true,
                     .inDemoHome = true}},
            {"audit", "audit --json --window day --demo",
             Audit{.window = Day, .asJson = true, .inDemoHome = true}},
            {"status", "status --format {tool} --tool claude --json",
             Status{.provider = UsageProvider::Claude,
                    .format = QStringLiteral("{tool}"),
                    .asJson = true}},
            {"JSON of the demo", "report --json --demo",
             Report{.asJson = true, .inDemoHome = true}},
            {"a value behind an equals sign", "report --window=week", Report{.window = Week}},
            {"the bridge reads what is its own", "bridge --help", Bridge{}},
            {"the demo may come first", "--demo report", Report{.inDemoHome = true}},
        });
    }
    void understood()
    {
        const auto row = test::currentRow<WordsRow>();
        QVERIFY(parseCommandLine(split(row.words)) == row.command);
    }

    void misuse_data()
    {
        test::table<MisuseRow>({
            {"unknown word", "raport", "raport"},
            {"unknown option", "report --jsn", "--jsn"},
            {"report twice", "report report", "report"},
            {"an option of the report alone", "--json", "--json"},
            {"unknown window", "report --window year", "year"},
            {"a window's name is exact", "report --window Day", "Day"},
            {"unknown counting", "report --count twice", "twice"},
            {"unknown tool", "explain --tool cursor", "cursor"},
            {"JSON holds everything", "explain --json --all", "--all"},
            {"another command's option", "audit --count once", "--count"},
            {"unknown placeholder", "status --format {cost}", "{cost}"},
            {"the stored figures are nobody's demo", "status --demo", "--demo"},
            {"no window", "report --window", "--window"},
            {"a value too many", "report --json=3", "--json"},
            {"JSON holds all windows", "report --json --window day", "--window"},
        });
    }
    void misuse()
    {
        const auto row = test::currentRow<MisuseRow>();
        const Command command = parseCommandLine(split(row.words));
        const auto *misuse = std::get_if<command::Misuse>(&command);
        QVERIFY(misuse);
        QVERIFY2(misuse->message.contains(QString::fromUtf8(row.named)),
                 qPrintable(misuse->message));
        QVERIFY(!misuse->message.contains(u'\n'));
    }
};

QTEST_GUILESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
