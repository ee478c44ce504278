#include "model/IsoDateTime.h"
#include "model/LocalTime.h"
#include "model/WindowInterval.h"
#include "support/Table.h"
#include "support/Texts.h"

#include <QTimeZone>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

const QStringList none;

QString textOrNone(std::optional<Instant> instant)
{
    return instant ? test::toText(*instant) : QStringLiteral("-");
}

} // namespace

class TimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isoDateTimes()
    {
        const auto read = [](const char *text) { return textOrNone(parseIsoDateTime(text)); };
        QCOMPARE(test::mismatches<const char *>(
                     read,
                     {{"2024-05-01T12:30:00.1Z", "2024-05-01T12:30:00.100Z"},
                      {"2026-04-11T07:00:00.528743+00:00", "2026-04-11T07:00:00.528Z"},
                      {"2024-05-01T00:30:00+09:00", "2024-04-30T15:30:00.000Z"},
                      {"2024-12-31T23:00:00-11:30", "2025-01-01T10:30:00.000Z"},
                      {"1969-12-31T23:59:59.999Z", "1969-12-31T23:59:59.999Z"},
                      {"0001-01-01T00:00:00Z", "0001-01-01T00:00:00.000Z"},
                      {"0001-01-01T00:00:00+00:01", "-"},
                      {"9999-12-31T23:59:59-08:00", "-"},
                      {"0000-05-01T00:00:00Z", "-"},
                      {"2023-02-29T00:00:00Z", "-"},
                      {"2024-05-01T24:00:00Z", "-"},
                      {"2024-05-01T12:60:00Z", "-"},
                      {"2024-05-01T12:30:60Z", "-"},
                      {"2024-05-01T12:30:00+24:00", "-"},
                      {"2024-05-01T12:30:00+09:60", "-"},
                      {"2024-05-01T12:30:00+0900", "-"},
                      {"2024-05-01T12:30:00", "-"},
                      {"2024-05-01 12:30:00Z", "-"},
                      {"2024-05-01T12:30:00.Z", "-"},
                      {"2024-5-01T12:30:00Z", "-"},
                      {"2024-+5-01T12:30:00Z", "-"},
                      {"2024-05-01T12:30:00Z ", "-"},
                      {"2024-05-01", "-"},
                      {"", "-"}}),
                 none);
    }

    void whatIsWrittenCanBeRead()
    {
        for (Instant date = earliestInstant - 24h; date < latestInstant + 48h; date += 12'345h) {
            const Instant within = std::clamp(date, earliestInstant, latestInstant);
            QCOMPARE(textOrNone(parseIsoDateTime(formatIsoDateTime(date).toStdString())),
                     test::toText(std::chrono::floor<std::chrono::seconds>(within)));
        }
        QCOMPARE(formatIsoDateTime(Instant{-1ms}), QStringLiteral("1969-12-31T23:59:59Z"));
        QCOMPARE(formatIsoDateTime(latestInstant + 1s), QStringLiteral("9999-12-31T23:59:59Z"));
    }

    void unixTimes()
    {
        const auto read = [](double number) { return textOrNone(fromUnixNumber(number)); };
        QCOMPARE(test::mismatches<double>(read,
                                          {{1'700'000'000.123, "2023-11-14T22:13:20.123Z"},
                                           {1'700'000'000'123, "2023-11-14T22:13:20.123Z"},
                                           {1e10, "2286-11-20T17:46:40.000Z"},
                                           {1e10 + 1, "1970-04-26T17:46:40.001Z"},
                                           {253'402'300'799'999, "9999-12-31T23:59:59.999Z"},
                                           {253'402'300'800'000, "-"},
                                           {1e300, "-"},
                                           {0, "-"},
                                           {-1, "-"}}),
                 none);
    }

    void localTimes()
    {
        // A zone, and what a clock there shows.
        const auto read = [](QByteArray text) {
            const QByteArray zone = text.first(text.indexOf(' '));
            const auto local = parseLocalDateTime(text.sliced(zone.size() + 1).toStdString());
            return textOrNone(local ? instantShowing(*local, QTimeZone(zone)) : std::nullopt);
        };
        QCOMPARE(
            test::mismatches<const char *>(
                read,
                {{"UTC 2024-05-01 12:30:09", "2024-05-01T12:30:09.000Z"},
                 {"Asia/Tokyo 2024-05-01", "2024-04-30T15:00:00.000Z"},
                 {"America/Adak 2026-03-08 02:30:00", "-"}, // skipped
                 {"America/Adak 2026-03-08 03:30:00", "2026-03-08T12:30:00.000Z"},
                 {"Pacific/Kiritimati 2024-05-01", "2024-04-30T10:00:00.000Z"},
                 {"Europe/London 2026-03-29 01:30:00", "-"}, // skipped
                 {"Europe/London 2026-10-25 01:30:00", "2026-10-25T00:30:00.000Z"}, // the first
                 {"America/Los_Angeles 9999-12-31 23:59:59", "-"},
                 {"Asia/Tokyo 0001-01-01", "-"},
                 {"UTC 2024-05-01 24:00:00", "-"},
                 {"UTC 2024-05-01 12:30:60", "-"},
                 {"UTC 2024-05-01T12:30:00", "-"},
                 {"UTC 2024-05-01 12:30:00.5", "-"},
                 {"UTC 2024-05-01 12:30:00Z", "-"},
                 {"UTC 2024-04-31", "-"}}),
            none);
    }

    void windows()
    {
        // A zone, a moment and a window.
        const auto span = [](const char *text) {
            const QStringList words = QString::fromUtf8(text).split(u' ');
            const auto span =
                interval(windowKindFromRawValue(words[2]).value(), test::at(words[1].toStdString()),
                         QTimeZone(words[0].toUtf8()));
            return formatIsoDateTime(span.start) + u' ' + formatIsoDateTime(span.end);
        };
        QCOMPARE(test::mismatches<const char *>(
                     span,
                     {{"Asia/Tokyo 2026-02-12T15:00:30Z fiveHours",
                       "2026-02-12T10:00:30Z 2026-02-12T15:00:30Z"},
                      {"Europe/London 2026-04-01T09:00:00Z week", // across a clock change
                       "2026-03-25T09:00:00Z 2026-04-01T09:00:00Z"},
                      {"Asia/Tokyo 2026-02-12T15:00:30Z day",
                       "2026-02-12T15:00:00Z 2026-02-13T15:00:00Z"},
                      {"Pacific/Honolulu 2026-02-12T09:59:59Z day",
                       "2026-02-11T10:00:00Z 2026-02-12T10:00:00Z"},
                      {"Asia/Tokyo 2026-12-31T14:59:59Z month",
                       "2026-11-30T15:00:00Z 2026-12-31T15:00:00Z"},
                      {"America/Sao_Paulo 2018-11-04T15:00:00Z day", // midnight is skipped
                       "2018-11-04T03:00:00Z 2018-11-05T02:00:00Z"},
                      {"Europe/London 2026-03-29T12:00:00Z day", // of 23 hours
                       "2026-03-29T00:00:00Z 2026-03-29T23:00:00Z"},
                      {"Pacific/Apia 2011-12-30T10:00:00Z day", // after a skipped date
                       "2011-12-30T10:00:00Z 2011-12-31T10:00:00Z"},
                      {"Asia/Kolkata 2026-02-12T09:10:00Z hour",
                       "2026-02-12T08:30:00Z 2026-02-12T09:30:00Z"},
                      {"Europe/London 2026-10-25T01:30:00Z hour", // repeated, the second
                       "2026-10-25T01:00:00Z 2026-10-25T02:00:00Z"},
                      {"Australia/Lord_Howe 2026-04-04T15:10:00Z hour", // a repeated half
                       "2026-04-04T14:30:00Z 2026-04-04T15:30:00Z"},
                      {"Australia/Lord_Howe 2026-10-03T15:40:00Z hour", // after a skipped half
                       "2026-10-03T15:00:00Z 2026-10-03T16:00:00Z"}}),
                 none);
        const QTimeZone tokyo("Asia/Tokyo");
        QCOMPARE(test::toText(collectionCutoff(test::at("2026-03-31T03:00:00Z"), tokyo)),
                 QStringLiteral("2026-02-27T15:00:00.000Z")); // a day before the month
        QCOMPARE(test::toText(collectionCutoff(test::at("2026-03-02T03:00:00Z"), tokyo)),
                 QStringLiteral("2026-02-22T03:00:00.000Z")); // a day before the week
    }
};

QTEST_GUILESS_MAIN(TimeTest)
#include "TimeTest.moc"
