#include "model/WindowInterval.h"

#include "support/Table.h"
#include "support/Texts.h"

#include <QTimeZone>

using namespace tallyglass;

struct IntervalRow
{
    const char *name;
    const char *zone;
    const char *now;
    UsageWindowKind kind;
    const char *start;
    const char *end;
};

class WindowIntervalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void interval_data()
    {
        using enum UsageWindowKind;
        test::table<IntervalRow>({
            {"five hours roll, across midnight", "Asia/Tokyo", "2026-02-12T15:00:30Z", FiveHours,
             "2026-02-12T10:00:30Z", "2026-02-12T15:00:30Z"},
            {"a week rolls, across a clock change", "Europe/London", "2026-04-01T09:00:00Z", Week,
             "2026-03-25T09:00:00Z", "2026-04-01T09:00:00Z"},
            {"a new day at local midnight", "Asia/Tokyo", "2026-02-12T15:00:30Z", Day,
             "2026-02-12T15:00:00Z", "2026-02-13T15:00:00Z"},
            {"December ends in the next year", "Asia/Tokyo", "2026-12-31T14:59:59Z", Month,
             "2026-11-30T15:00:00Z", "2026-12-31T15:00:00Z"},

            {"midnight is skipped: from 01:00", "America/Sao_Paulo", "2018-11-04T15:00:00Z", Day,
             "2018-11-04T03:00:00Z", "2018-11-05T02:00:00Z"},
            {"a day of 23 hours", "Europe/London", "2026-03-29T12:00:00Z", Day,
             "2026-03-29T00:00:00Z", "2026-03-29T23:00:00Z"},
            {"a skipped date: the day after it", "Pacific/Apia", "2011-12-30T10:00:00Z", Day,
             "2011-12-30T10:00:00Z", "2011-12-31T10:00:00Z"},

            {"half-hour offset", "Asia/Kolkata", "2026-02-12T09:10:00Z", Hour,
             "2026-02-12T08:30:00Z", "2026-02-12T09:30:00Z"},
            {"after a skipped hour", "Europe/London", "2026-03-29T01:00:00Z", Hour,
             "2026-03-29T01:00:00Z", "2026-03-29T02:00:00Z"},
            {"repeated hour, the second", "Europe/London", "2026-10-25T01:30:00Z", Hour,
             "2026-10-25T01:00:00Z", "2026-10-25T02:00:00Z"},
            {"in a repeated half", "Australia/Lord_Howe", "2026-04-04T15:10:00Z", Hour,
             "2026-04-04T14:30:00Z", "2026-04-04T15:30:00Z"},
            {"after a skipped half", "Australia/Lord_Howe", "2026-10-03T15:40:00Z", Hour,
             "2026-10-03T15:00:00Z", "2026-10-03T16:00:00Z"},
        });
    }
    void interval()
    {
        const auto row = test::currentRow<IntervalRow>();
        const QTimeZone zone(row.zone);
        QVERIFY2(zone.isValid(), "this system lacks the time zone");
        const WindowInterval span = tallyglass::interval(row.kind, test::at(row.now), zone);
        QCOMPARE(test::toText(span.start), test::toText(test::at(row.start)));
        QCOMPARE(test::toText(span.end), test::toText(test::at(row.end)));
    }

    void cutoffIsADayBeforeTheEarliestWindow()
    {
        const QTimeZone tokyo("Asia/Tokyo");
        QCOMPARE(test::toText(collectionCutoff(test::at("2026-03-31T03:00:00Z"), tokyo)),
                 QStringLiteral("2026-02-27T15:00:00.000Z")); // of the month
        QCOMPARE(test::toText(collectionCutoff(test::at("2026-03-02T03:00:00Z"), tokyo)),
                 QStringLiteral("2026-02-22T03:00:00.000Z")); // of the week
    }
};

QTEST_GUILESS_MAIN(WindowIntervalTest)
#include "WindowIntervalTest.moc"
