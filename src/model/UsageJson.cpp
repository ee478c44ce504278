#include "model/UsageJson.h"

#include "model/IsoDateTime.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

namespace tallyglass {

namespace {

/// The keys of a record and the fields that they stand for.
template<typename Record>
constexpr int fieldsOf = 0;

template<>
constexpr auto fieldsOf<TokenUsage> =
    std::tuple(std::pair("inputTokens", &TokenUsage::inputTokens),
               std::pair("outputTokens", &TokenUsage::outputTokens),
               std::pair("cacheCreationTokens", &TokenUsage::cacheCreationTokens),
               std::pair("cacheReadTokens", &TokenUsage::cacheReadTokens),
               std::pair("explicitTotalTokens", &TokenUsage::explicitTotalTokens));

template<>
constexpr auto fieldsOf<ModelUsageSummary> =
    std::tuple(std::pair("model", &ModelUsageSummary::model),
               std::pair("tokens", &ModelUsageSummary::tokens),
               std::pair("eventCount", &ModelUsageSummary::eventCount));

template<>
constexpr auto fieldsOf<RateLimitUsage> =
    std::tuple(std::pair("usedPercent", &RateLimitUsage::usedPercent),
               std::pair("resetDate", &RateLimitUsage::resetDate),
               std::pair("windowMinutes", &RateLimitUsage::windowMinutes),
               std::pair("planType", &RateLimitUsage::planType),
               std::pair("percentKnown", &RateLimitUsage::percentKnown));

template<>
constexpr auto fieldsOf<ProviderUsageSummary> =
    std::tuple(std::pair("provider", &ProviderUsageSummary::provider),
               std::pair("tokens", &ProviderUsageSummary::tokens),
               std::pair("eventCount", &ProviderUsageSummary::eventCount),
               std::pair("budgetTokens", &ProviderUsageSummary::budgetTokens),
               std::pair("models", &ProviderUsageSummary::models),
               std::pair("rateLimit", &ProviderUsageSummary::rateLimit));

template<>
constexpr auto fieldsOf<WindowUsageSummary> =
    std::tuple(std::pair("window", &WindowUsageSummary::window),
               std::pair("startDate", &WindowUsageSummary::startDate),
               std::pair("endDate", &WindowUsageSummary::endDate),
               std::pair("providers", &WindowUsageSummary::providers));

template<>
constexpr auto fieldsOf<UsageSnapshot> =
    std::tuple(std::pair("generatedAt", &UsageSnapshot::generatedAt),
               std::pair("summaries", &UsageSnapshot::summaries));

template<>
constexpr auto fieldsOf<UsageHistorySample> =
    std::tuple(std::pair("id", &UsageHistorySample::id),
               std::pair("date", &UsageHistorySample::date),
               std::pair("provider", &UsageHistorySample::provider),
               std::pair("fiveHourPercent", &UsageHistorySample::fiveHourPercent),
               std::pair("weekPercent", &UsageHistorySample::weekPercent),
               std::pair("totalTokens", &UsageHistorySample::totalTokens));

/// Every kind of field there and back. decode() gives false for what encode() would not have
/// written.
struct Coder
{
    static QJsonValue encode(std::int64_t value) { return qint64{value}; }
    static QJsonValue encode(double value) { return value; }
    static QJsonValue encode(bool value) { return value; }
    static QJsonValue encode(const QString &value) { return value; }
    static QJsonValue encode(Instant value) { return formatIsoDateTime(value); }
    static QJsonValue encode(UsageProvider value) { return QString(rawValue(value)); }
    static QJsonValue encode(UsageWindowKind value) { return QString(rawValue(value)); }
    static QJsonValue encode(const QUuid &value)
    {
        return value.toString(QUuid::WithoutBraces).toUpper();
    }
    /// A field that is absent is undefined, which takes it out of its object.
    template<typename Value>
    static QJsonValue encode(const std::optional<Value> &value)
    {
        return value ? encode(*value) : QJsonValue(QJsonValue::Undefined);
    }
    template<typename Value>
    static QJsonValue encode(const std::vector<Value> &values)
    {
        QJsonArray json;
        for (const Value &value : values)
            json.append(encode(value));
        return json;
    }
    template<typename Record>
    static QJsonValue encode(const Record &record)
    {
        QJsonObject json;
        const auto write = [&](const auto &field) {
            json.insert(QLatin1String(field.first), encode(record.*field.second));
        };
        std::apply([&](const auto &...fields) { (write(fields), ...); }, fieldsOf<Record>);
        return json;
    }

    static bool decode(const QJsonValue &json, std::int64_t &value)
    {
        value = json.toInteger();
        // Not a whole number: toInteger() gives back the default, whichever it is.
        return json.toInteger(1) == value;
    }
    static bool decode(const QJsonValue &json, double &value)
    {
        value = json.toDouble();
        return json.isDouble();
    }
    static bool decode(const QJsonValue &json, bool &value)
    {
        value = json.toBool();
        return json.isBool();
    }
    static bool decode(const QJsonValue &json, QString &value)
    {
        value = json.toString();
        return json.isString();
    }
    static bool decode(const QJsonValue &json, Instant &value)
    {
        return take(value, parseIsoDateTime(json.toString().toStdString()));
    }
    static bool decode(const QJsonValue &json, UsageProvider &value)
    {
        return take(value, providerFromRawValue(json.toString()));
    }
    static bool decode(const QJsonValue &json, UsageWindowKind &value)
    {
        return take(value, windowKindFromRawValue(json.toString()));
    }
    static bool decode(const QJsonValue &json, QUuid &value)
    {
        value = QUuid::fromString(json.toString());
        return !value.isNull();
    }
    template<typename Value>
    static bool decode(const QJsonValue &json, std::optional<Value> &value)
    {
        return json.isUndefined() || json.isNull() || decode(json, value.emplace());
    }
    template<typename Value>
    static bool decode(const QJsonValue &json, std::vector<Value> &values)
    {
        for (const QJsonValue element : json.toArray()) {
            if (!decode(element, values.emplace_back()))
                return false;
        }
        return json.isArray();
    }
    template<typename Record>
    static bool decode(const QJsonValue &json, Record &record)
    {
        const QJsonObject object = json.toObject();
        const auto read = [&](const auto &field) {
            return decode(object.value(QLatin1String(field.first)), record.*field.second);
        };
        return json.isObject()
            && std::apply([&](const auto &...fields) { return (read(fields) && ...); },
                          fieldsOf<Record>);
    }

private:
    template<typename Value>
    static bool take(Value &value, const std::optional<Value> &read)
    {
        value = read.value_or(value);
        return read.has_value();
    }
};

__extension__ using WideInteger = __int128; // holds any sum of 64-bit figures that fits into a file

WideInteger magnitude(std::int64_t figure)
{
    return figure < 0 ? -WideInteger{figure} : WideInteger{figure};
}

/// No sum of the counters, and no total, is further from 0.
WideInteger largestSum(const TokenUsage &usage)
{
    return std::max(magnitude(usage.inputTokens) + magnitude(usage.outputTokens)
                        + magnitude(usage.cacheCreationTokens) + magnitude(usage.cacheReadTokens),
                    magnitude(usage.explicitTotalTokens.value_or(0)));
}

/// Whether the window's figures can be summed. Ours can; those of a damaged file would end the
/// program at every start.
bool canBeSummed(const WindowUsageSummary &window)
{
    WideInteger tokens = 0;
    WideInteger events = 0;
    WideInteger ofModels = 0;
    for (const ProviderUsageSummary &provider : window.providers) {
        tokens += largestSum(provider.tokens);
        events += magnitude(provider.eventCount);
        for (const ModelUsageSummary &model : provider.models)
            ofModels = std::max(ofModels, largestSum(model.tokens));
    }
    return std::max({tokens, events, ofModels}) <= std::numeric_limits<std::int64_t>::max();
}

} // namespace

QJsonObject toJson(const UsageSnapshot &snapshot)
{
    return Coder::encode(snapshot).toObject();
}

QJsonObject toJson(const TokenUsage &usage)
{
    return Coder::encode(usage).toObject();
}

QJsonObject toJson(const RateLimitUsage &limit)
{
    return Coder::encode(limit).toObject();
}

QJsonArray toJson(const std::vector<UsageHistorySample> &samples)
{
    return Coder::encode(samples).toArray();
}

std::optional<UsageSnapshot> snapshotFromJson(const QJsonObject &json)
{
    UsageSnapshot snapshot;
    const bool isWhole =
        Coder::decode(json, snapshot) && std::ranges::all_of(snapshot.summaries, canBeSummed);
    return isWhole ? std::optional{std::move(snapshot)} : std::nullopt;
}

std::optional<std::vector<UsageHistorySample>> historyFromJson(const QJsonArray &json)
{
    std::vector<UsageHistorySample> samples;
    return Coder::decode(json, samples) ? std::optional{std::move(samples)} : std::nullopt;
}

} // namespace tallyglass
