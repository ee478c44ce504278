#include "model/IsoDateTime.h"

#include <algorithm>

namespace tallyglass {

using namespace std::chrono;

namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

/// Whether a text begins like a pattern, in which "0" stands for any digit.
bool beginsLike(std::string_view text, std::string_view pattern)
{
    return text.size() >= pattern.size()
        && std::ranges::equal(
               pattern, text.substr(0, pattern.size()), [](char expected, char character) {
                   return expected == '0' ? isDigit(character) : character == expected;
               });
}

/// The number that digits known to be there make.
int number(std::string_view text, std::size_t from, std::size_t digits)
{
    int value = 0;
    for (const char digit : text.substr(from, digits))
        value = value * 10 + (digit - '0');
    return value;
}

/// The date at the front of a text.
std::optional<LocalTime> dateAt(std::string_view text)
{
    if (!beginsLike(text, "0000-00-00"))
        return std::nullopt;
    const year_month_day date{year{number(text, 0, 4)},
                              month{static_cast<unsigned>(number(text, 5, 2))},
                              day{static_cast<unsigned>(number(text, 8, 2))}};
    return date.ok() ? std::optional{LocalTime{local_days{date}}} : std::nullopt;
}

constexpr std::size_t dateLength = 10;
constexpr std::size_t dateTimeLength = 19;

/// Date and time at the front of a text.
std::optional<LocalTime> dateTimeAt(std::string_view text, char separator)
{
    const auto date = dateAt(text);
    if (!date || text.size() < dateTimeLength || text[dateLength] != separator
        || !beginsLike(text.substr(dateLength + 1), "00:00:00"))
        return std::nullopt;
    const int hour = number(text, 11, 2);
    const int minute = number(text, 14, 2);
    const int second = number(text, 17, 2);
    if (hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    return *date + hours{hour} + minutes{minute} + seconds{second};
}

/// Cuts a fraction of a second off the front of a text; digits beyond milliseconds are dropped.
/// Nothing when there is a point without a digit behind it.
std::optional<milliseconds> takeFraction(std::string_view &text)
{
    if (!text.starts_with('.'))
        return milliseconds{0};
    text.remove_prefix(1);
    int value = 0;
    int unit = 100;
    const std::size_t before = text.size();
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1), unit /= 10)
        value += unit * (text.front() - '0');
    return text.size() < before ? std::optional{milliseconds{value}} : std::nullopt;
}

/// "Z" or "+09:00", the whole text.
std::optional<minutes> zoneOffset(std::string_view text)
{
    if (text == "Z")
        return minutes{0};
    if (text.size() != 6 || (!beginsLike(text, "+00:00") && !beginsLike(text, "-00:00")))
        return std::nullopt;
    const int hour = number(text, 1, 2);
    const int minute = number(text, 4, 2);
    if (hour > 23 || minute > 59)
        return std::nullopt;
    return (text.front() == '-' ? -1 : 1) * (hours{hour} + minutes{minute});
}

} // namespace

std::optional<Instant> parseIsoDateTime(std::string_view text)
{
    const auto local = dateTimeAt(text, 'T');
    if (!local)
        return std::nullopt;
    text.remove_prefix(dateTimeLength);
    const auto fraction = takeFraction(text);
    const auto offset = zoneOffset(text);
    if (!fraction || !offset)
        return std::nullopt;
    return withinYears(Instant{local->time_since_epoch() + *fraction - *offset});
}

std::optional<LocalTime> parseLocalDateTime(std::string_view text)
{
    if (text.size() == dateLength)
        return dateAt(text);
    return text.size() == dateTimeLength ? dateTimeAt(text, ' ') : std::nullopt;
}

QString formatIsoDateTime(Instant instant)
{
    const Instant writable = std::clamp(instant, earliestInstant, latestInstant);
    const auto dayStart = floor<days>(writable);
    const year_month_day date{dayStart};
    const hh_mm_ss time{floor<seconds>(writable - dayStart)};
    return QString::asprintf("%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                             static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                             static_cast<int>(time.hours().count()),
                             static_cast<int>(time.minutes().count()),
                             static_cast<int>(time.seconds().count()));
}

} // namespace tallyglass
