#include "Sessions.h"

#include <array>
#include <cstdio>

namespace tallyglass::bench {

namespace {

class Rollout
{
public:
    Rollout(Workshop &workshop, const std::filesystem::path &path, std::string id, Instant start)
        : m_random(workshop.random)
        , m_texts(workshop.texts)
        , m_log(workshop, path, start)
        , m_id(std::move(id))
    {
    }

    void write(std::int64_t size)
    {
        std::string meta = joined({R"({"id":")", m_id, R"(","timestamp":")", m_log.timestamp(),
                                   R"(","cwd":"/home/dev/webshop","originator":"codex_cli_rs",)"
                                   R"("cli_version":"0.128.0","source":"cli","model_provider":)"
                                   R"("openai","instructions":")"});
        m_texts.appendProse(meta, 6'000, m_random);
        writeItem("session_meta", meta + R"("})");
        writeTokenCount(); // The first of a thread has limits only.
        while (m_log.size() < size) {
            writeItem("turn_context",
                      R"({"cwd":"/home/dev/webshop","approval_policy":"on-request",)"
                      R"("sandbox_policy":{"mode":"workspace-write"},"model":"gpt-5.1-codex",)"
                      R"("effort":"medium","summary":"auto"})");
            writeMessage("user", "input_text");
            for (std::int64_t call = m_random.between(1, 15); call > 0 && m_log.size() < size;
                 --call)
                writeToolCall();
            writeMessage("assistant", "output_text");
        }
    }

private:
    std::string item(std::string_view type, std::string_view payload)
    {
        return joined({R"({"timestamp":")", m_log.timestamp(), R"(","type":")", type,
                       R"(","payload":)", payload, "}"});
    }

    void writeItem(std::string_view type, std::string_view payload)
    {
        m_log.write(item(type, payload));
    }

    void writeMessage(std::string_view role, std::string_view textType)
    {
        std::string text;
        m_texts.appendProse(text, m_random.spread(60, 4'000), m_random);
        writeItem("response_item",
                  joined({R"({"type":"message","role":")", role, R"(","content":[{"type":")",
                          textType, R"(","text":")", text, R"("}]})"}));
        writeItem("event_msg",
                  joined({R"({"type":")", role == "user" ? "user_message" : "agent_message",
                          R"(","message":")", text, R"("})"}));
    }

    void writeToolCall()
    {
        const std::string callId = "call_" + m_random.hexadecimal(24);
        std::string reasoning = R"({"type":"reasoning","summary":[],"encrypted_content":")";
        m_texts.appendBase64(reasoning, m_random.spread(600, 6'000), m_random);
        writeItem("response_item", reasoning + R"("})");
        writeItem("response_item",
                  joined({R"({"type":"function_call","name":"exec_command","arguments":)"
                          R"("{\"cmd\":\"sed -n '1,200p' src/)",
                          m_random.hexadecimal(6), R"(.ts\"}","call_id":")", callId, R"("})"}));
        std::string output = joined({R"({"type":"function_call_output","call_id":")", callId,
                                     R"(","output":"Exit code: 0\nOutput:\n)"});
        m_texts.appendOutput(output, m_random.spread(100, 40'000, 1.2), m_random);
        writeItem("response_item", output + R"("})");

        m_last = {.inputTokens = m_random.between(9'000, 180'000),
                  .outputTokens = m_random.spread(10, 9'000)};
        m_last.explicitTotalTokens = m_last.counterSum();
        m_total = m_total + m_last;
        writeTokenCount();
        if (m_random.oneIn(2)) // Each is often written again when the limits are.
            writeTokenCount();
    }

    static std::string usage(const TokenUsage &tokens)
    {
        return joined({R"({"input_tokens":)", std::to_string(tokens.inputTokens),
                       R"(,"cached_input_tokens":)", std::to_string(tokens.inputTokens / 16 * 15),
                       R"(,"output_tokens":)", std::to_string(tokens.outputTokens),
                       R"(,"reasoning_output_tokens":)", std::to_string(tokens.outputTokens / 2),
                       R"(,"total_tokens":)", std::to_string(tokens.counterSum()), "}"});
    }

    std::string limit(int windowMinutes)
    {
        const auto reset = std::chrono::floor<std::chrono::seconds>(
            m_log.date() + std::chrono::minutes{m_random.between(1, windowMinutes)});
        return joined({R"({"used_percent":)", std::to_string(m_random.between(0, 100)),
                       R"(.0,"window_minutes":)", std::to_string(windowMinutes), R"(,"resets_at":)",
                       std::to_string(reset.time_since_epoch().count()), "}"});
    }

    void writeTokenCount()
    {
        const std::string info = m_last == TokenUsage{}
            ? "null"
            : joined({R"({"total_token_usage":)", usage(m_total), R"(,"last_token_usage":)",
                      usage(m_last), R"(,"model_context_window":272000})"});
        const std::string line =
            item("event_msg",
                 joined({R"({"type":"token_count","info":)", info,
                         R"(,"rate_limits":{"limit_id":"codex","limit_name":null,"primary":)",
                         limit(300), R"(,"secondary":)", limit(10'080),
                         R"(,"credits":{"has_credits":false,"unlimited":false,"balance":"0"},)"
                         R"("plan_type":"plus","rate_limit_reached_type":null}})"}));
        m_log.writeUsage(line, UsageProvider::Codex, {}, m_last);
    }

    Random &m_random;
    const TextPool &m_texts;
    LogWriter m_log;
    std::string m_id;
    TokenUsage m_last;
    TokenUsage m_total; ///< of the thread so far
};

} // namespace

void writeCodexSession(Workshop &workshop, std::int64_t size)
{
    const std::string id = workshop.random.uuid();
    const Instant start = workshop.sessionStart();
    const std::chrono::year_month_day date{std::chrono::floor<std::chrono::days>(start)};
    std::array<char, 32> day{};
    std::snprintf(day.data(), day.size(), "%04d/%02u/%02u", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    const auto path =
        std::filesystem::path(".codex/sessions") / day.data() / joined({"rollout-", id, ".jsonl"});
    Rollout(workshop, path, id, start).write(size);
}

} // namespace tallyglass::bench
