#include "app/ReportTable.h"

#include "support/Texts.h"

#include <QTest>
#include <QTimeZone>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const Instant now = test::at("2026-02-12T09:10:00Z");

WindowUsageSummary fiveHours()
{
    WindowUsageSummary window =
        UsageSnapshot::empty(now, QTimeZone::utc()).summary({}, now, QTimeZone::utc());
    window.providers[0] = {.provider = UsageProvider::Codex,
                           .tokens = {.inputTokens = 1'234'567},
                           .eventCount = 12,
                           .rateLimit = RateLimitUsage{.usedPercent = 0.641,
                                                       .resetDate = now + 107min,
                                                       .windowMinutes = 300,
                                                       .planType = QStringLiteral("plus")}};
    window.providers[1] = {.provider = UsageProvider::Claude,
                           .tokens = {.outputTokens = 50'000},
                           .eventCount = 3,
                           .budgetTokens = 1'000'000,
                           .models = {{QStringLiteral("opus"), {.inputTokens = 25'000}, 1},
                                      {QStringLiteral("漢字"), {.inputTokens = 20'000}, 1},
                                      {QStringLiteral("sonnet"), {.inputTokens = 3'000}, 1},
                                      {QStringLiteral("haiku"), {.inputTokens = 2'000}, 1}}};
    return window;
}

QString tableOf(const WindowUsageSummary &window, const TableStyle &style)
{
    return reportTable(std::span(&window, 1), now, style);
}

/// Columns in a terminal, of the characters that occur here.
int columns(const QString &line)
{
    return static_cast<int>(std::ranges::count_if(line, [](QChar c) { return c >= u'あ'; })
                            + line.size());
}

} // namespace

class ReportTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnsStandBelowEachOther()
    {
        // Japanese characters take two columns each.
        const auto expected = QStringLiteral(
            "                  使用量  合計  上限     リセットまで   見込み  イベント  "
            "トップモデル\n"
            "5h\n"
            "  Codex              65%  1.2M  5h Plus  あと1時間47分  100%          12  "
            "モデル情報なし\n"
            "  Claude Code        ~5%   50K  --       --             --             3  "
            "opus 25K, 漢字 20K, sonnet 3K, +1\n"
            "  GitHub Copilot      --     0  --       --             --             0\n");
        QCOMPARE(tableOf(fiveHours(), {}), expected);
    }

    void figuresAndResetAreTheLastToGo()
    {
        for (int width = 1; width <= 120; ++width) {
            const QString table = tableOf(fiveHours(), {.width = width});
            for (const QString &line : table.split(u'\n'))
                QVERIFY2(columns(line) <= std::max(width, 2)
                             && (width < 37 || !line.endsWith(u' ')),
                         qPrintable(line));
            QCOMPARE(table.contains(QStringLiteral("65%  1.2M")), width >= 22);
            QCOMPARE(table.contains(QStringLiteral("あと1時間47分")), width >= 37);
            QCOMPARE(table.contains(QStringLiteral("GitHub Copilot")), width >= 45);
            QCOMPARE(table.contains(QStringLiteral("5h Plus")), width >= 54);
            QCOMPARE(table.contains(QStringLiteral("haiku")), false);
            QCOMPARE(table.contains(QStringLiteral("sonnet 3K, +1")), width >= 107);
        }
    }

    void namesCannotSteerTheTerminal()
    {
        // A colour, C1's "next line" and its introducer, a direction, separators, a tag, half a
        // pair.
        const QString hostile = QStringLiteral("a\x1b[31m\u0085\u009b\u202E\u2028\u2029\nz")
            + QString::fromUcs4(U"\U000E0041") + QChar(0xd800);
        WindowUsageSummary window = fiveHours();
        window.providers[0].models = {{hostile, {}, 1}};
        window.providers[0].rateLimit->planType = hostile;
        const QString sign(QChar::ReplacementCharacter);
        const QString table = tableOf(window, {});
        QCOMPARE(table.count(
                     QStringLiteral("a%1[31m%2z%3 ").arg(sign, sign.repeated(6), sign.repeated(2))),
                 1);
        QCOMPARE(table.count(u'\n'), tableOf(fiveHours(), {}).count(u'\n'));
        for (const uint character : table.toUcs4())
            QVERIFY(character == '\n' || QChar::isPrint(character));
    }

    void coloursTakeNoColumns()
    {
        QString table = tableOf(fiveHours(), {.hasColours = true});
        QVERIFY(table.contains(QStringLiteral("\x1b[33m")));
        QCOMPARE(table.remove(QRegularExpression(QStringLiteral("\x1b\\[\\d+m"))),
                 tableOf(fiveHours(), {}));
    }
};

QTEST_GUILESS_MAIN(ReportTableTest)
#include "ReportTableTest.moc"
