#include "model/IsoDateTime.h"

#include "support/Table.h"
#include "support/Texts.h"

using namespace tallyglass;
using namespace std::chrono_literals;

struct ParseRow
{
    const char *name;
    const char *text;
    const char *expected; ///< null when the text is no date
};

class IsoDateTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parse_data()
    {
        test::table<ParseRow>({
            {"one digit is tenths", "2024-05-01T12:30:00.1Z", "2024-05-01T12:30:00.100Z"},
            {"microseconds", "2026-04-11T07:00:00.528743+00:00", "2026-04-11T07:00:00.528Z"},
            {"east of Greenwich", "2024-05-01T00:30:00+09:00", "2024-04-30T15:30:00.000Z"},
            {"west by half an hour", "2024-12-31T23:00:00-03:30", "2025-01-01T02:30:00.000Z"},
            {"before 1970", "1969-12-31T23:59:59.999Z", "1969-12-31T23:59:59.999Z"},

            {"no zone", "2024-05-01T12:30:00", nullptr},
            {"blank for T", "2024-05-01 12:30:00Z", nullptr},
            {"no leap year", "2023-02-29T00:00:00Z", nullptr},
            {"year zero", "0000-05-01T00:00:00Z", nullptr},
            {"empty fraction", "2024-05-01T12:30:00.Z", nullptr},
            {"one digit", "2024-5-01T12:30:00Z", nullptr},
            {"sign for a digit", "2024-+5-01T12:30:00Z", nullptr},
            {"something behind", "2024-05-01T12:30:00Z ", nullptr},
            {"empty", "", nullptr},
        });
    }
    void parse()
    {
        const auto row = test::currentRow<ParseRow>();
        const auto instant = parseIsoDateTime(row.text);
        QCOMPARE(instant ? test::toText(*instant) : QString(), QString::fromUtf8(row.expected));
    }

    void parseLocal_data()
    {
        test::table<ParseRow>({
            {"date and time", "2024-05-01 12:30:09", "2024-05-01T12:30:09.000Z"},
            {"a date is its midnight", "2024-05-01", "2024-05-01T00:00:00.000Z"},
            {"T for the blank", "2024-05-01T12:30:00", nullptr},
            {"fraction", "2024-05-01 12:30:00.5", nullptr},
            {"zone", "2024-05-01 12:30:00Z", nullptr},
            {"impossible date", "2024-04-31", nullptr},
        });
    }
    void parseLocal()
    {
        const auto row = test::currentRow<ParseRow>();
        const auto time = parseLocalDateTime(row.text);
        QCOMPARE(time ? test::toText(Instant{time->time_since_epoch()}) : QString(),
                 QString::fromUtf8(row.expected));
    }

    void formatDropsPartsOfSeconds()
    {
        QCOMPARE(formatIsoDateTime(Instant{1'700'000'000'999ms}),
                 QStringLiteral("2023-11-14T22:13:20Z"));
        QCOMPARE(formatIsoDateTime(Instant{-1ms}), QStringLiteral("1969-12-31T23:59:59Z"));
        QCOMPARE(formatIsoDateTime(latestInstant), QStringLiteral("9999-12-31T23:59:59Z"));
        // West of Greenwich it is the year 10000 by then, which has no place in such a text.
        QVERIFY(parseIsoDateTime("9999-12-31T23:59:59.999-12:00") == latestInstant);
    }
};

QTEST_GUILESS_MAIN(IsoDateTimeTest)
#include "IsoDateTimeTest.moc"
