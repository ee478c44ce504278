#include "collect/RateLimitReader.h"

#include "collect/FieldAliases.h"
#include "collect/FieldReaders.h"
#include "model/UsageWindowKind.h"

#include <algorithm>
#include <array>

namespace tallyglass {

namespace {

/// What a log reports is at most the whole of a limit.
std::optional<double> reportedShare(const JsonValue &object)
{
    for (const FieldKey key : usedShareKeys) {
        if (const auto share = usedShare(object.find(key), 1.0))
            return share;
    }
    return std::nullopt;
}

std::optional<std::int64_t> statedWindowMinutes(const JsonValue &object)
{
    for (const FieldKey key : windowLengthKeys) {
        if (const std::int64_t minutes = integerValue(object.find(key)); minutes > 0)
            return minutes;
    }
    return std::nullopt;
}

/// The length that a window's name stands for: "5-hour", "seven_day", "Weekly", …
std::optional<std::int64_t> minutesOfWindowNamed(std::string_view name)
{
    QString lower = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())).toLower();
    const std::string folded = lower.replace(u'-', u'_').replace(u' ', u'_').toStdString();
    const auto isIn = [&](std::string_view part) { return folded.find(part) != std::string::npos; };
    const WindowFacts *meant = nullptr;
    for (const UsageWindowKind kind : allWindowKinds) {
        const WindowFacts &facts = factsOf(kind);
        const bool fits =
            facts.logNames.contains(folded) || std::ranges::any_of(facts.partsOfLogNames, isIn);
        if (fits && (!meant || facts.logNameTurn < meant->logNameTurn))
            meant = &facts;
    }
    return meant ? meant->limitMinutes : std::nullopt;
}

std::optional<std::int64_t> windowMinutes(const JsonValue &object, std::string_view memberName)
{
    if (const auto minutes = statedWindowMinutes(object))
        return minutes;
    for (const FieldKey key : windowNameKeys) {
        const auto name = stringValue(object.find(key));
        if (const auto minutes = name ? minutesOfWindowNamed(*name) : std::nullopt)
            return minutes;
    }
    return minutesOfWindowNamed(memberName);
}

/// One search for limits, from a record's member downwards.
class LimitSearch
{
public:
    LimitSearch(const QTimeZone &zone, NameTable &names, std::vector<RateLimitUsage> &found)
        : m_zone(zone)
        , m_names(names)
        , m_found(found)
    {
    }

    /// \a memberName is that of the member which holds \a value, \a plan the one stated nearest
    /// around it.
    void search(const JsonValue &value, std::string_view memberName,
                std::optional<std::string_view> plan)
    {
        if (value.kind() == JsonValue::Kind::Array) {
            for (const JsonValue &element : value)
                search(element, memberName, plan);
        } else if (value.kind() == JsonValue::Kind::Object && !takeLimit(value, memberName, plan)) {
            forEachContainer(value,
                             [&](const JsonValue &member) { search(member, member.name(), plan); });
        }
    }

private:
    /// Takes the object if it is a limit, else makes its plan the one of what it holds. Apart from
    /// search(), whose frames may stand a thousand deep and stay small so.
    [[gnu::noinline]] bool takeLimit(const JsonValue &object, std::string_view memberName,
                                     std::optional<std::string_view> &plan)
    {
        if (const auto own = stringValue(object.find("plan_type")))
            plan = own;
        if (!isRateLimit(object, m_zone))
            return false;

        const auto share = reportedShare(object);
        RateLimitUsage limit{
            .usedPercent = share.value_or(0),
            .resetDate = firstDate(object, resetKeys, m_zone),
            .windowMinutes = windowMinutes(object, memberName),
            .percentKnown = share.has_value(),
        };
        if (plan)
            limit.planType = m_names.shared(*plan);
        m_found.push_back(std::move(limit));
        return true;
    }

    const QTimeZone &m_zone;
    NameTable &m_names;
    std::vector<RateLimitUsage> &m_found;
};

} // namespace

bool isRateLimit(const JsonValue &object, const QTimeZone &zone)
{
    return reportedShare(object) || statedWindowMinutes(object)
        || firstDate(object, resetKeys, zone);
}

std::vector<RateLimitUsage> rateLimits(const JsonValue &record, const QTimeZone &zone,
                                       NameTable &names)
{
    std::vector<RateLimitUsage> found;
    for (const FieldKey container : limitContainerKeys) {
        if (const JsonValue *value = record.find(container)) {
            LimitSearch(zone, names, found)
                .search(*value, container.name(), stringValue(record.find("plan_type")));
        }
    }
    return found;
}

} // namespace tallyglass
