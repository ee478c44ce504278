#include "model/UsageJson.h"

#include "model/IsoDateTime.h"

namespace tallyglass {

namespace {

template<typename Value>
void insertIfPresent(QJsonObject &json, QLatin1String key, const std::optional<Value> &value)
{
    if (value)
        json.insert(key, QJsonValue(*value));
}

QJsonObject toJson(const TokenUsage &usage)
{
    QJsonObject json{
        {QLatin1String("inputTokens"), QJsonValue(qint64{usage.inputTokens})},
        {QLatin1String("outputTokens"), QJsonValue(qint64{usage.outputTokens})},
        {QLatin1String("cacheCreationTokens"), QJsonValue(qint64{usage.cacheCreationTokens})},
        {QLatin1String("cacheReadTokens"), QJsonValue(qint64{usage.cacheReadTokens})},
    };
    insertIfPresent<qint64>(json, QLatin1String("explicitTotalTokens"), usage.explicitTotalTokens);
    return json;
}

QJsonObject toJson(const ModelUsageSummary &summary)
{
    return {
        {QLatin1String("model"), summary.model},
        {QLatin1String("tokens"), toJson(summary.tokens)},
        {QLatin1String("eventCount"), QJsonValue(qint64{summary.eventCount})},
    };
}

QJsonObject toJson(const RateLimitUsage &limit)
{
    QJsonObject json{{QLatin1String("usedPercent"), limit.usedPercent}};
    if (limit.resetDate)
        json.insert(QLatin1String("resetDate"), formatIsoDateTime(*limit.resetDate));
    insertIfPresent<qint64>(json, QLatin1String("windowMinutes"), limit.windowMinutes);
    insertIfPresent(json, QLatin1String("planType"), limit.planType);
    insertIfPresent(json, QLatin1String("percentKnown"), limit.percentKnown);
    return json;
}

QJsonObject toJson(const ProviderUsageSummary &summary);
QJsonObject toJson(const WindowUsageSummary &summary);
QJsonObject toJson(const UsageHistorySample &sample);

template<typename Record>
QJsonArray toJsonArray(const std::vector<Record> &records)
{
    QJsonArray array;
    for (const Record &record : records)
        array.append(toJson(record));
    return array;
}

QJsonObject toJson(const ProviderUsageSummary &summary)
{
    QJsonObject json{
        {QLatin1String("provider"), QString(rawValue(summary.provider))},
        {QLatin1String("tokens"), toJson(summary.tokens)},
        {QLatin1String("eventCount"), QJsonValue(qint64{summary.eventCount})},
        {QLatin1String("budgetTokens"), QJsonValue(qint64{summary.budgetTokens})},
        {QLatin1String("models"), toJsonArray(summary.models)},
    };
    if (summary.rateLimit)
        json.insert(QLatin1String("rateLimit"), toJson(*summary.rateLimit));
    return json;
}

QJsonObject toJson(const WindowUsageSummary &summary)
{
    return {
        {QLatin1String("window"), QString(rawValue(summary.window))},
        {QLatin1String("startDate"), formatIsoDateTime(summary.startDate)},
        {QLatin1String("endDate"), formatIsoDateTime(summary.endDate)},
        {QLatin1String("providers"), toJsonArray(summary.providers)},
    };
}

QJsonObject toJson(const UsageHistorySample &sample)
{
    return {
        {QLatin1String("id"), sample.id.toString(QUuid::WithoutBraces).toUpper()},
        {QLatin1String("date"), formatIsoDateTime(sample.date)},
        {QLatin1String("provider"), QString(rawValue(sample.provider))},
        {QLatin1String("fiveHourPercent"), sample.fiveHourPercent},
        {QLatin1String("weekPercent"), sample.weekPercent},
        {QLatin1String("totalTokens"), QJsonValue(qint64{sample.totalTokens})},
    };
}

/// Reads the members of one object, each by its type. After the first that is missing or of another
/// type, ok() is false and the values mean nothing.
class MemberReader
{
public:
    explicit MemberReader(const QJsonValue &value)
        : m_object(value.toObject())
        , m_ok(value.isObject())
    {
    }

    bool ok() const { return m_ok; }

    std::int64_t integer(QLatin1String key) { return require(optionalInteger(key)); }
    double number(QLatin1String key)
    {
        const QJsonValue value = m_object.value(key);
        check(value.isDouble());
        return value.toDouble();
    }
    QString string(QLatin1String key) { return require(optionalString(key)); }
    Instant date(QLatin1String key) { return require(optionalDate(key)); }

    std::optional<std::int64_t> optionalInteger(QLatin1String key)
    {
        const QJsonValue value = m_object.value(key);
        if (isAbsent(value))
            return std::nullopt;
        // Not a whole number: toInteger() gives back the default, whichever it is.
        check(value.toInteger(0) == value.toInteger(1));
        return value.toInteger();
    }
    std::optional<bool> optionalBoolean(QLatin1String key)
    {
        const QJsonValue value = m_object.value(key);
        if (isAbsent(value))
            return std::nullopt;
        check(value.isBool());
        return value.toBool();
    }
    std::optional<QString> optionalString(QLatin1String key)
    {
        const QJsonValue value = m_object.value(key);
        if (isAbsent(value))
            return std::nullopt;
        check(value.isString());
        return value.toString();
    }
    std::optional<Instant> optionalDate(QLatin1String key)
    {
        const auto text = optionalString(key);
        if (!text)
            return std::nullopt;
        const auto date = parseIsoDateTime(text->toStdString());
        check(date.has_value());
        return date;
    }

    QJsonValue member(QLatin1String key) const { return m_object.value(key); }

    template<typename Value>
    Value require(std::optional<Value> value)
    {
        check(value.has_value());
        return std::move(value).value_or(Value{});
    }

    template<typename Record>
    std::vector<Record> list(QLatin1String key,
                             std::optional<Record> (*readRecord)(const QJsonValue &))
    {
        const QJsonValue value = m_object.value(key);
        check(value.isArray());
        std::vector<Record> records;
        for (const QJsonValue element : value.toArray())
            records.push_back(require(readRecord(element)));
        return records;
    }

private:
    static bool isAbsent(const QJsonValue &value) { return value.isUndefined() || value.isNull(); }
    void check(bool isAsExpected) { m_ok = m_ok && isAsExpected; }

    QJsonObject m_object;
    bool m_ok;
};

std::optional<TokenUsage> tokenUsageFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    const TokenUsage usage{
        .inputTokens = reader.integer(QLatin1String("inputTokens")),
        .outputTokens = reader.integer(QLatin1String("outputTokens")),
        .cacheCreationTokens = reader.integer(QLatin1String("cacheCreationTokens")),
        .cacheReadTokens = reader.integer(QLatin1String("cacheReadTokens")),
        .explicitTotalTokens = reader.optionalInteger(QLatin1String("explicitTotalTokens")),
    };
    return reader.ok() ? std::optional{usage} : std::nullopt;
}

std::optional<ModelUsageSummary> modelFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    ModelUsageSummary summary{
        .model = reader.string(QLatin1String("model")),
        .tokens = reader.require(tokenUsageFromJson(reader.member(QLatin1String("tokens")))),
        .eventCount = reader.integer(QLatin1String("eventCount")),
    };
    return reader.ok() ? std::optional{std::move(summary)} : std::nullopt;
}

std::optional<RateLimitUsage> limitFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    RateLimitUsage limit{
        .usedPercent = reader.number(QLatin1String("usedPercent")),
        .resetDate = reader.optionalDate(QLatin1String("resetDate")),
        .windowMinutes = reader.optionalInteger(QLatin1String("windowMinutes")),
        .planType = reader.optionalString(QLatin1String("planType")),
        .percentKnown = reader.optionalBoolean(QLatin1String("percentKnown")),
    };
    return reader.ok() ? std::optional{std::move(limit)} : std::nullopt;
}

std::optional<ProviderUsageSummary> providerSummaryFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    ProviderUsageSummary summary{
        .provider = reader.require(providerFromRawValue(reader.string(QLatin1String("provider")))),
        .tokens = reader.require(tokenUsageFromJson(reader.member(QLatin1String("tokens")))),
        .eventCount = reader.integer(QLatin1String("eventCount")),
        .budgetTokens = reader.integer(QLatin1String("budgetTokens")),
        .models = reader.list(QLatin1String("models"), modelFromJson),
    };
    const QJsonValue limit = reader.member(QLatin1String("rateLimit"));
    if (!limit.isUndefined() && !limit.isNull())
        summary.rateLimit = reader.require(limitFromJson(limit));
    return reader.ok() ? std::optional{std::move(summary)} : std::nullopt;
}

std::optional<WindowUsageSummary> windowSummaryFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    WindowUsageSummary summary{
        .window = reader.require(windowKindFromRawValue(reader.string(QLatin1String("window")))),
        .startDate = reader.date(QLatin1String("startDate")),
        .endDate = reader.date(QLatin1String("endDate")),
        .providers = reader.list(QLatin1String("providers"), providerSummaryFromJson),
    };
    return reader.ok() ? std::optional{std::move(summary)} : std::nullopt;
}

std::optional<UsageHistorySample> sampleFromJson(const QJsonValue &json)
{
    MemberReader reader(json);
    const QUuid id = QUuid::fromString(reader.string(QLatin1String("id")));
    const UsageHistorySample sample{
        .id = reader.require(id.isNull() ? std::nullopt : std::optional{id}),
        .date = reader.date(QLatin1String("date")),
        .provider = reader.require(providerFromRawValue(reader.string(QLatin1String("provider")))),
        .fiveHourPercent = reader.number(QLatin1String("fiveHourPercent")),
        .weekPercent = reader.number(QLatin1String("weekPercent")),
        .totalTokens = reader.integer(QLatin1String("totalTokens")),
    };
    return reader.ok() ? std::optional{sample} : std::nullopt;
}

} // namespace

QJsonObject toJson(const UsageSnapshot &snapshot)
{
    return {
        {QLatin1String("generatedAt"), formatIsoDateTime(snapshot.generatedAt)},
        {QLatin1String("summaries"), toJsonArray(snapshot.summaries)},
    };
}

QJsonArray toJson(const std::vector<UsageHistorySample> &samples)
{
    return toJsonArray(samples);
}

std::optional<UsageSnapshot> snapshotFromJson(const QJsonObject &json)
{
    MemberReader reader(json);
    UsageSnapshot snapshot{
        .generatedAt = reader.date(QLatin1String("generatedAt")),
        .summaries = reader.list(QLatin1String("summaries"), windowSummaryFromJson),
    };
    return reader.ok() ? std::optional{std::move(snapshot)} : std::nullopt;
}

std::optional<std::vector<UsageHistorySample>> historyFromJson(const QJsonArray &json)
{
    std::vector<UsageHistorySample> samples;
    samples.reserve(static_cast<std::size_t>(json.size()));
    for (const QJsonValue element : json) {
        const auto sample = sampleFromJson(element);
        if (!sample)
            return std::nullopt;
        samples.push_back(*sample);
    }
    return samples;
}

} // namespace tallyglass
