#include "model/IsoDateTime.h"

#include <algorithm>

namespace tallyglass {

using namespace std::chrono;

namespace {

/// Reads fixed-width fields from the front of a text; once one fails, all later ones do.
class FieldScanner
{
public:
    explicit FieldScanner(std::string_view text)
        : m_rest(text)
    {
    }

    bool ok() const { return m_ok; }
    bool atEnd() const { return m_rest.empty(); }
    bool nextIs(char character) const { return !m_rest.empty() && m_rest.front() == character; }

    void literal(char character)
    {
        m_ok = m_ok && nextIs(character);
        if (m_ok)
            m_rest.remove_prefix(1);
    }

    int number(std::size_t digits)
    {
        m_ok = m_ok && m_rest.size() >= digits;
        int value = 0;
        for (std::size_t i = 0; m_ok && i < digits; ++i)
            value = value * 10 + digit();
        return value;
    }

    /// The digits of a decimal fraction of a second, at least one; beyond milliseconds dropped.
    milliseconds fraction()
    {
        int value = 0;
        std::size_t count = 0;
        for (; m_ok && (count == 0 || (!m_rest.empty() && isDigit(m_rest.front()))); ++count) {
            const int next = m_rest.empty() ? fail() : digit();
            if (count < 3)
                value = value * 10 + next;
        }
        for (; count < 3; ++count)
            value *= 10;
        return milliseconds{value};
    }

private:
    static bool isDigit(char character) { return character >= '0' && character <= '9'; }

    int fail()
    {
        m_ok = false;
        return 0;
    }

    int digit()
    {
        const char character = m_rest.front();
        if (!isDigit(character))
            return fail();
        m_rest.remove_prefix(1);
        return character - '0';
    }

    std::string_view m_rest;
    bool m_ok = true;
};

std::optional<local_days> scanDate(FieldScanner &scanner)
{
    const int yearNumber = scanner.number(4);
    scanner.literal('-');
    const int monthNumber = scanner.number(2);
    scanner.literal('-');
    const int dayNumber = scanner.number(2);
    const year_month_day date{year{yearNumber}, month{static_cast<unsigned>(monthNumber)},
                              day{static_cast<unsigned>(dayNumber)}};
    if (!scanner.ok() || yearNumber < 1 || !date.ok())
        return std::nullopt;
    return local_days{date};
}

std::optional<seconds> scanTime(FieldScanner &scanner)
{
    const int hour = scanner.number(2);
    scanner.literal(':');
    const int minute = scanner.number(2);
    scanner.literal(':');
    const int second = scanner.number(2);
    if (!scanner.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return hours{hour} + minutes{minute} + seconds{second};
}

/// "Z" or "+09:00", the end of the text.
std::optional<minutes> scanZoneOffset(FieldScanner &scanner)
{
    if (scanner.nextIs('Z')) {
        scanner.literal('Z');
        return scanner.atEnd() ? std::optional{minutes{0}} : std::nullopt;
    }
    const bool isWest = scanner.nextIs('-');
    scanner.literal(isWest ? '-' : '+');
    const int hour = scanner.number(2);
    scanner.literal(':');
    const int minute = scanner.number(2);
    if (!scanner.ok() || !scanner.atEnd() || hour > 23 || minute > 59)
        return std::nullopt;
    const minutes offset = hours{hour} + minutes{minute};
    return isWest ? -offset : offset;
}

} // namespace

std::optional<Instant> parseIsoDateTime(std::string_view text)
{
    FieldScanner scanner(text);
    const auto date = scanDate(scanner);
    scanner.literal('T');
    const auto time = scanTime(scanner);
    milliseconds fraction{0};
    if (scanner.nextIs('.')) {
        scanner.literal('.');
        fraction = scanner.fraction();
    }
    const auto offset = scanZoneOffset(scanner);
    if (!scanner.ok() || !date || !time || !offset)
        return std::nullopt;
    return std::min(Instant{date->time_since_epoch() + *time + fraction - *offset}, latestInstant);
}

std::optional<LocalTime> parseLocalDateTime(std::string_view text)
{
    FieldScanner scanner(text);
    const auto date = scanDate(scanner);
    if (!date)
        return std::nullopt;
    if (scanner.atEnd())
        return LocalTime{*date};
    scanner.literal(' ');
    const auto time = scanTime(scanner);
    if (!scanner.ok() || !time || !scanner.atEnd())
        return std::nullopt;
    return LocalTime{*date} + *time;
}

QString formatIsoDateTime(Instant instant)
{
    const auto dayStart = floor<days>(instant);
    const year_month_day date{dayStart};
    const hh_mm_ss time{floor<seconds>(instant - dayStart)};
    return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                             static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                             static_cast<int>(time.hours().count()),
                             static_cast<int>(time.minutes().count()),
                             static_cast<int>(time.seconds().count()));
}

} // namespace tallyglass
