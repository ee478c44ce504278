#include "collect/RecordParser.h"

#include "collect/FieldAliases.h"
#include "collect/FieldReaders.h"
#include "collect/RateLimitReader.h"

namespace tallyglass {

namespace {

/// What an object passes on to those inside it.
struct Inherited
{
    UsageProvider provider;
    Instant date;
    std::optional<std::string_view> model;
    /// The limits below have been reported already, down to the first object that is a limit.
    bool limitsAreReported = false;

    // Only for marks.
    bool isInnerCopy = false; ///< within what a tool gave back
    bool isRetold = false; ///< within a record of another one's progress
    bool isRunningTotal = false;
    const JsonValue *request = nullptr; ///< its id
};

std::optional<UsageProvider> providerHint(const JsonValue &object)
{
    const auto text = stringValue(object.find("provider"));
    if (!text)
        return std::nullopt;
    const std::string hint = QString::fromUtf8(text->data(), static_cast<qsizetype>(text->size()))
                                 .toLower()
                                 .toStdString();
    for (const UsageProvider provider : allProviders) {
        if (factsOf(provider).hints.contains(hint))
            return provider;
    }
    return std::nullopt;
}

std::optional<std::string_view> modelName(const JsonValue &object)
{
    for (const FieldKey key : modelKeys) {
        const auto name = stringValue(object.find(key));
        if (name && !name->empty())
            return name;
    }
    return std::nullopt;
}

std::optional<TokenUsage> tokensOfMember(const JsonValue &object, FieldKey key)
{
    const JsonValue *member = objectValue(object.find(key));
    return member ? tokenUsage(*member) : std::nullopt;
}

/// One of the two usages of a Codex record of type "token_count": that of the last call, or the
/// total of the whole thread, which would count everything again with every record.
const JsonValue *threadUsage(const JsonValue &object, FieldKey key)
{
    const JsonValue *info = objectValue(object.find("info"));
    return info ? objectValue(info->find(key)) : nullptr;
}

/// Members that hold nothing new: the usage has been read with its object, the info's limits too.
/// Codex repeats the newest "token_usage_record" in other records.
bool isWalked(const JsonValue &member, UsageProvider provider)
{
    return !member.isCalled("usage") && !member.isCalled("rate_limit_info")
        && !(provider == UsageProvider::Codex && member.isCalled("latest_token_usage_record"));
}

class RecordWalk
{
public:
    RecordWalk(const LogOrigin &origin, std::vector<UsageEvent> &events)
        : m_origin(origin)
        , m_events(events)
    {
    }

    void walk(const JsonValue &value, const Inherited &around)
    {
        if (value.kind() == JsonValue::Kind::Array) {
            for (const JsonValue &element : value)
                walk(element, around);
            return;
        }
        if (value.kind() != JsonValue::Kind::Object)
            return;
        Inherited passedOn = around;
        if (!takeObject(value, passedOn))
            return;
        forEachContainer(value, [&](const JsonValue &member) {
            if (!isWalked(member, passedOn.provider))
                return;
            if (member.isCalled("rate_limits")) {
                Inherited searched = passedOn;
                searched.limitsAreReported = true;
                walk(member, searched);
            } else if (m_origin.marks) {
                walk(member, withPlace(passedOn, member));
            } else {
                walk(member, passedOn);
            }
        });
    }

private:
    /// What marks must know of the place inside \a member.
    static Inherited withPlace(Inherited context, const JsonValue &member)
    {
        context.isInnerCopy |= member.isCalled("toolUseResult");
        context.isRetold |= member.isCalled("data");
        context.isRunningTotal |= member.isCalled("total_token_usage");
        return context;
    }

    /// Appends the object's event, if it has one, and makes \a context that of its members. False
    /// when these are not to be walked. Apart from walk(), whose frames may stand a thousand deep
    /// and stay small so.
    [[gnu::noinline]] bool takeObject(const JsonValue &object, Inherited &context)
    {
        if (const auto date = timestamp(object, m_origin.zone))
            context.date = *date;
        if (const auto model = modelName(object))
            context.model = model;
        if (const auto provider = providerHint(object))
            context.provider = *provider;
        if (m_origin.marks && object.find("requestId"))
            context.request = object.find("requestId");

        const bool isCodex = context.provider == UsageProvider::Codex;
        const auto type = isCodex ? stringValue(object.find("type")) : std::nullopt;
        // Stands beside the "token_count" of the same call and says the same, with running totals.
        if (type == "token_usage_record")
            return false;

        if (context.limitsAreReported && isRateLimit(object, m_origin.zone))
            context.limitsAreReported = false;
        std::vector<RateLimitUsage> limits;
        if (!context.limitsAreReported)
            limits = rateLimits(object, m_origin.zone, m_origin.names);

        if (type == "token_count") {
            const JsonValue *last = threadUsage(object, "last_token_usage");
            if (const auto tokens = last ? tokenUsage(*last) : std::nullopt) {
                append(context, *tokens, std::move(limits));
                if (m_origin.marks)
                    m_origin.marks->events.push_back(tokenCountMark(object, *last));
                return false;
            }
        }
        auto tokens = tokensOfMember(object, "usage");
        if (!tokens)
            tokens = tokenUsage(object);
        if (tokens || !limits.empty()) {
            append(context, tokens.value_or(TokenUsage{}), std::move(limits));
            if (m_origin.marks)
                m_origin.marks->events.push_back(mark(context, object, tokens));
        }
        return true;
    }

    void append(const Inherited &context, const TokenUsage &tokens,
                std::vector<RateLimitUsage> limits)
    {
        m_events.push_back({
            .provider = context.provider,
            .date = context.date,
            .model =
                context.model ? std::optional{m_origin.names.shared(*context.model)} : std::nullopt,
            .usage = tokens,
            .source = m_origin.source,
            .rateLimits = std::move(limits),
        });
    }

    EventMark tokenCountMark(const JsonValue &object, const JsonValue &last) const
    {
        const auto counters = [](const JsonValue &usage) {
            const TokenUsage tokens = tokenUsage(usage).value_or(TokenUsage{});
            return withHashed(
                withHashed(withHashed(static_cast<std::uint64_t>(tokens.inputTokens),
                                      static_cast<std::uint64_t>(tokens.outputTokens)),
                           static_cast<std::uint64_t>(tokens.explicitTotalTokens.value_or(0))),
                static_cast<std::uint64_t>(integerValue(usage.find("cached_input_tokens"))));
        };
        const JsonValue *total = threadUsage(object, "total_token_usage");
        return {.kind = EventMark::Kind::TokenCount,
                .line = m_origin.marks->line,
                .identity = total ? counters(*total) : 0,
                .call = counters(last),
                .part = integerValue(last.find("cached_input_tokens"))};
    }

    EventMark mark(const Inherited &context, const JsonValue &object,
                   const std::optional<TokenUsage> &tokens) const
    {
        EventMark mark{.line = m_origin.marks->line};
        if (!tokens)
            return mark;
        if (context.provider == UsageProvider::Codex && context.isRunningTotal)
            mark.kind = EventMark::Kind::RunningTotal;
        if (context.provider != UsageProvider::Claude)
            return mark;
        if (context.isInnerCopy) {
            mark.kind = EventMark::Kind::InnerCopy;
            return mark;
        }
        const auto id = stringValue(object.find("id"));
        if (!id || id->empty())
            return mark;
        mark.kind = EventMark::Kind::Answer;
        mark.isRetold = context.isRetold;
        // Some relays give every answer the same id. Their input differs all the same.
        mark.identity = hashed(*id);
        for (const std::int64_t counter :
             {tokens->inputTokens, tokens->cacheCreationTokens, tokens->cacheReadTokens})
            mark.identity = withHashed(mark.identity, static_cast<std::uint64_t>(counter));
        const auto request = stringValue(context.request);
        mark.call = request && !request->empty() ? hashed(*request) : 0;
        return mark;
    }

    const LogOrigin &m_origin;
    std::vector<UsageEvent> &m_events;
};

} // namespace

void parseRecord(const JsonValue &value, const LogOrigin &origin, std::vector<UsageEvent> &events)
{
    RecordWalk(origin, events).walk(value, {.provider = origin.provider, .date = origin.fileDate});
}

} // namespace tallyglass
