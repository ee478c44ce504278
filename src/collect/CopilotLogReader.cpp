#include "collect/CopilotLogReader.h"

#include "collect/FieldAliases.h"
#include "collect/FieldReaders.h"

namespace tallyglass {

namespace {

/// One model's counters, nothing when none counts.
std::optional<TokenUsage> modelUsage(const JsonValue &metrics)
{
    const JsonValue *model = objectValue(&metrics);
    const JsonValue *usage = model ? objectValue(model->find("usage")) : nullptr;
    if (!usage)
        return std::nullopt;

    const TokenUsage tokens{
        .inputTokens = integerValue(usage->find("inputTokens")),
        .outputTokens = checkedSum(integerValue(usage->find("outputTokens")),
                                   integerValue(usage->find("reasoningTokens"))),
        .cacheCreationTokens = integerValue(usage->find("cacheWriteTokens")),
        .cacheReadTokens = integerValue(usage->find("cacheReadTokens")),
    };
    return tokens.counterSum() < 1 ? std::nullopt : std::optional{tokens};
}

} // namespace

CopilotLogReader::CopilotLogReader(const LogOrigin &origin)
    : m_origin(origin)
{
}

void CopilotLogReader::take(const JsonValue &record)
{
    if (record.kind() != JsonValue::Kind::Object
        || stringValue(record.find("type")) != "session.shutdown")
        return;
    const JsonValue *data = objectValue(record.find("data"));
    const JsonValue *metrics = data ? objectValue(data->find(copilotMetricsKey.front())) : nullptr;
    if (!metrics)
        return;

    const Instant date = timestamp(record, m_origin.zone).value_or(m_origin.fileDate);
    forEachContainer(*metrics, [&](const JsonValue &member) {
        const auto usage = modelUsage(member);
        if (!usage)
            return;
        const std::string_view model = member.name();
        const auto held = m_models.find(model);
        if (held == m_models.end())
            m_models.emplace(model, Entry{.date = date, .usage = *usage});
        else if (date >= held->second.date)
            held->second = {.date = date, .usage = *usage};
    });
}

std::vector<UsageEvent> CopilotLogReader::events() const
{
    std::vector<UsageEvent> events;
    events.reserve(m_models.size());
    for (const auto &[model, entry] : m_models) {
        events.push_back({
            .provider = m_origin.provider,
            .date = entry.date,
            .model = m_origin.names.shared(model),
            .usage = entry.usage,
            .source = m_origin.source,
        });
    }
    return events;
}

} // namespace tallyglass
