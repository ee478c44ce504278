#include "collect/CopilotLogReader.h"

#include "collect/FieldReaders.h"

namespace tallyglass {

using simdjson::dom::element;

namespace {

/// One model's counters, nothing when none counts.
std::optional<TokenUsage> modelUsage(element metrics)
{
    const auto model = objectValue(&metrics);
    const auto usage = model ? objectValue(ObjectFields(*model).find("usage")) : std::nullopt;
    if (!usage)
        return std::nullopt;

    const ObjectFields fields(*usage);
    const TokenUsage tokens{
        .inputTokens = integerValue(fields.find("inputTokens")),
        .outputTokens = checkedSum(integerValue(fields.find("outputTokens")),
                                   integerValue(fields.find("reasoningTokens"))),
        .cacheCreationTokens = integerValue(fields.find("cacheWriteTokens")),
        .cacheReadTokens = integerValue(fields.find("cacheReadTokens")),
    };
    return tokens.counterSum() < 1 ? std::nullopt : std::optional{tokens};
}

} // namespace

CopilotLogReader::CopilotLogReader(const LogOrigin &origin)
    : m_origin(origin)
{
}

void CopilotLogReader::take(element record)
{
    const auto object = objectValue(&record);
    if (!object)
        return;
    const ObjectFields fields(*object);
    if (stringValue(fields.find("type")) != "session.shutdown")
        return;
    const auto data = objectValue(fields.find("data"));
    const auto metrics =
        data ? objectValue(ObjectFields(*data).find("modelMetrics")) : std::nullopt;
    if (!metrics)
        return;

    const Instant date = timestamp(fields, m_origin.zone).value_or(m_origin.fileDate);
    forEachContainer(*metrics, [&](std::string_view model, element value) {
        const auto usage = modelUsage(value);
        if (!usage)
            return;
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
