#include "collect/CopilotLogReader.h"

#include "collect/FieldAliases.h"
#include "collect/FieldReaders.h"

namespace tallyglass {

namespace {

/// The object that holds one model's counters, null when there is none.
const JsonValue *usageOf(const JsonValue &metrics)
{
    const JsonValue *model = objectValue(&metrics);
    return model ? objectValue(model->find("usage")) : nullptr;
}

TokenUsage modelUsage(const JsonValue &usage)
{
    return {
        .inputTokens = integerValue(usage.find("inputTokens")),
        .outputTokens = checkedSum(integerValue(usage.find("outputTokens")),
                                   integerValue(usage.find("reasoningTokens"))),
        .cacheCreationTokens = integerValue(usage.find("cacheWriteTokens")),
        .cacheReadTokens = integerValue(usage.find("cacheReadTokens")),
    };
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
        const JsonValue *usage = usageOf(member);
        if (!usage)
            return;
        Entry entry{.date = date, .usage = modelUsage(*usage)};
        if (entry.usage.counterSum() < 1)
            return;
        if (m_origin.marks)
            entry.mark = {.kind = EventMark::Kind::Run,
                          .line = m_origin.marks->line,
                          .part = integerValue(usage->find("reasoningTokens"))};

        const std::string_view model = member.name();
        const auto held = m_models.find(model);
        if (held == m_models.end()) {
            m_models.emplace(model, entry);
            return;
        }
        if (date >= held->second.date)
            std::swap(held->second, entry);
        if (m_origin.marks) {
            entry.mark.isRecord = false;
            m_earlier.emplace_back(model, entry);
        }
    });
}

std::vector<UsageEvent> CopilotLogReader::events() const
{
    std::vector<UsageEvent> events;
    events.reserve(m_models.size() + m_earlier.size());
    const auto append = [&](const std::string &model, const Entry &entry) {
        events.push_back({
            .provider = m_origin.provider,
            .date = entry.date,
            .model = m_origin.names.shared(model),
            .usage = entry.usage,
            .source = m_origin.source,
        });
        if (m_origin.marks)
            m_origin.marks->events.push_back(entry.mark);
    };
    for (const auto &[model, entry] : m_models)
        append(model, entry);
    for (const auto &[model, entry] : m_earlier)
        append(model, entry);
    return events;
}

} // namespace tallyglass
