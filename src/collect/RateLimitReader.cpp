#include "collect/RateLimitReader.h"

#include "collect/FieldReaders.h"

#include <algorithm>
#include <array>

namespace tallyglass {

using simdjson::dom::element;

namespace {

/// The used share as a fraction from 0 to 1. The tools write percents, so 1 is one percent; only
/// below 1 can a value be meant as a fraction.
std::optional<double> usedShare(const ObjectFields &fields)
{
    for (const FieldKey key : usedShareKeys) {
        if (const auto value = decimalValue(fields.find(key))) {
            const double share = *value < 1.0 ? *value : *value / 100;
            return std::clamp(share, 0.0, 1.0);
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> statedWindowMinutes(const ObjectFields &fields)
{
    for (const FieldKey key : windowLengthKeys) {
        if (const std::int64_t minutes = integerValue(fields.find(key)); minutes > 0)
            return minutes;
    }
    return std::nullopt;
}

/// The length that a window's name stands for: "5-hour", "seven_day", "Weekly", …
std::optional<std::int64_t> minutesOfWindowNamed(std::string_view name)
{
    QString folded = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())).toLower();
    folded.replace(u'-', u'_').replace(u' ', u'_');
    const auto containsAny = [&](std::initializer_list<QLatin1String> parts) {
        return std::ranges::any_of(parts,
                                   [&](QLatin1String part) { return folded.contains(part); });
    };

    // Five hours before the hour, so that "15h" or "5_hour" is not taken for one.
    if (containsAny({QLatin1String("5h"), QLatin1String("5_hour"), QLatin1String("five_hour")}))
        return 300;
    if (containsAny({QLatin1String("7d"), QLatin1String("7_day"), QLatin1String("seven_day"),
                     QLatin1String("week")})) // and so "weekly"
        return 10'080;
    if (containsAny({QLatin1String("1h"), QLatin1String("1_hour")})
        || folded == QLatin1String("hour"))
        return 60;
    if (folded == QLatin1String("day") || folded == QLatin1String("daily"))
        return 1'440;
    return std::nullopt;
}

std::optional<std::int64_t> windowMinutes(const ObjectFields &fields, std::string_view memberName)
{
    if (const auto minutes = statedWindowMinutes(fields))
        return minutes;
    for (const FieldKey key : windowNameKeys) {
        const auto name = stringValue(fields.find(key));
        if (const auto minutes = name ? minutesOfWindowNamed(*name) : std::nullopt)
            return minutes;
    }
    return minutesOfWindowNamed(memberName);
}

/// One search for limits, from a record's member downwards.
class LimitSearch
{
public:
    LimitSearch(const QTimeZone &zone, std::vector<RateLimitUsage> &found)
        : m_zone(zone)
        , m_found(found)
    {
    }

    /// \a memberName is that of the member which holds \a value, \a plan the one stated nearest
    /// around it.
    void search(element value, std::string_view memberName, std::optional<std::string_view> plan)
    {
        simdjson::dom::array elements;
        if (value.get(elements) == simdjson::SUCCESS) {
            for (const element item : elements)
                search(item, memberName, plan);
            return;
        }
        simdjson::dom::object object;
        if (value.get(object) != simdjson::SUCCESS || takeLimit(object, memberName, plan))
            return;
        forEachContainer(
            object, [&](std::string_view name, element member) { search(member, name, plan); });
    }

private:
    /// Takes the object if it is a limit, else makes its plan the one of what it holds. Apart from
    /// search(), whose frames may stand a thousand deep and stay small so.
    [[gnu::noinline]] bool takeLimit(simdjson::dom::object object, std::string_view memberName,
                                     std::optional<std::string_view> &plan)
    {
        const ObjectFields fields(object);
        if (const auto own = stringValue(fields.find("plan_type")))
            plan = own;
        if (!isRateLimit(fields, m_zone))
            return false;

        const auto share = usedShare(fields);
        RateLimitUsage limit{
            .usedPercent = share.value_or(0),
            .resetDate = dateValue(fields, resetKeys, m_zone),
            .windowMinutes = windowMinutes(fields, memberName),
            .percentKnown = share.has_value(),
        };
        if (plan)
            limit.planType = QString::fromUtf8(plan->data(), static_cast<qsizetype>(plan->size()));
        m_found.push_back(std::move(limit));
        return true;
    }

    const QTimeZone &m_zone;
    std::vector<RateLimitUsage> &m_found;
};

} // namespace

bool isRateLimit(const ObjectFields &fields, const QTimeZone &zone)
{
    return usedShare(fields) || statedWindowMinutes(fields) || dateValue(fields, resetKeys, zone);
}

std::vector<RateLimitUsage> rateLimits(const ObjectFields &record, const QTimeZone &zone)
{
    constexpr std::array<FieldKey, 2> containers{"rate_limits", "rate_limit_info"};
    std::vector<RateLimitUsage> found;
    for (const FieldKey container : containers) {
        if (const element *value = record.find(container)) {
            LimitSearch(zone, found)
                .search(*value, fieldNames[container.index()],
                        stringValue(record.find("plan_type")));
        }
    }
    return found;
}

} // namespace tallyglass
