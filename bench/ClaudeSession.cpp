#include "Sessions.h"

#include <array>

namespace tallyglass::bench {

namespace {

constexpr std::array<std::string_view, 4> projects{"-home-dev-webshop", "-home-dev-webshop-api",
                                                   "-home-dev-label-printer", "-home-dev-dotfiles"};
constexpr std::array<std::string_view, 4> models{
    "claude-opus-4-5-20251101", "claude-opus-4-5-20251101", "claude-sonnet-4-5-20250929",
    "claude-haiku-4-5-20251001"};

/// A transcript, of the session itself or of one of its agents.
class Transcript
{
public:
    Transcript(Workshop &workshop, const std::filesystem::path &path, std::string sessionId,
               std::string agentId, Instant start)
        : m_random(workshop.random)
        , m_texts(workshop.texts)
        , m_log(workshop, path, start)
        , m_sessionId(std::move(sessionId))
        , m_agentId(std::move(agentId))
        , m_model(m_random.pick(models))
    {
    }

    void write(std::int64_t size)
    {
        if (m_agentId.empty())
            m_log.write(joined({R"({"type":"file-history-snapshot","messageId":")", m_random.uuid(),
                                R"(","snapshot":{"messageId":"x","trackedFileBackups":{},)"
                                R"("timestamp":")",
                                m_log.timestamp(), R"("},"isSnapshotUpdate":false})"}));
        while (m_log.size() < size) {
            writePrompt();
            for (std::int64_t call = m_random.between(1, 12); call > 0 && m_log.size() < size;
                 --call)
                writeToolCall();
            writeAnswer(textBlock(m_random.spread(80, 3'000)));
        }
        if (m_agentId.empty())
            m_log.write(joined({R"({"type":"summary","summary":"Rounding of order totals",)"
                                R"("leafUuid":")",
                                m_lastId, R"("})"}));
    }

    /// The answer to a call of an agent, which repeats the agent's last usage.
    void writeAgentResult()
    {
        const TokenUsage tokens = drawTokens();
        std::string line = beginning("user");
        line += R"("type":"user","message":{"role":"user","content":[{"tool_use_id":"toolu_)";
        line += m_random.hexadecimal(24);
        line += R"(","type":"tool_result","content":[)";
        const std::string text = textBlock(m_random.spread(300, 8'000));
        line += text;
        line += R"(]}]},"toolUseResult":{"status":"completed","prompt":")";
        m_texts.appendProse(line, 200, m_random);
        line += joined({R"(","agentId":")", m_random.hexadecimal(7), R"(","content":[)", text,
                        R"(],"totalDurationMs":)", number(3'000, 400'000), R"(,"totalTokens":)",
                        std::to_string(tokens.counterSum()), R"(,"totalToolUseCount":12,"usage":)",
                        usage(tokens), "}"});
        end(line);
        m_log.writeUsage(line, UsageProvider::Claude, {}, tokens);
    }

private:
    std::string number(std::int64_t least, std::int64_t most)
    {
        return std::to_string(m_random.between(least, most));
    }

    /// What every line begins with; \a userType tells who wrote it.
    std::string beginning(std::string_view who)
    {
        const std::string parent = m_lastId.empty() ? "null" : joined({"\"", m_lastId, "\""});
        m_lastId = m_random.uuid();
        std::string line =
            joined({R"({"parentUuid":)", parent, R"(,"isSidechain":)",
                    m_agentId.empty() ? "false" : "true",
                    R"(,"userType":"external","cwd":"/home/dev/webshop",)"
                    R"("sessionId":")",
                    m_sessionId, R"(","version":"2.1.41","gitBranch":"feature/rounding",)"});
        if (!m_agentId.empty())
            line += joined({R"("agentId":")", m_agentId, R"(",)"});
        if (who == "user" && m_random.oneIn(3))
            line += R"("slug":"quiet-humming-lake",)";
        return line;
    }

    /// What every line ends with.
    void end(std::string &line)
    {
        line +=
            joined({R"(,"uuid":")", m_lastId, R"(","timestamp":")", m_log.timestamp(), R"("})"});
    }

    std::string textBlock(std::int64_t size)
    {
        std::string block = R"({"type":"text","text":")";
        m_texts.appendProse(block, size, m_random);
        // Texts are cut in the midst of an emoji now and then.
        if (m_random.oneIn(400))
            block += R"(\ud83d)";
        return block + R"("})";
    }

    std::string thinkingBlock()
    {
        std::string block = R"({"type":"thinking","thinking":")";
        m_texts.appendProse(block, m_random.spread(100, 4'000), m_random);
        block += R"(","signature":")";
        m_texts.appendBase64(block, m_random.spread(200, 2'000), m_random);
        return block + R"("})";
    }

    std::string toolBlock(std::string_view toolId)
    {
        std::string block = joined({R"({"type":"tool_use","id":")", toolId, R"(","name":")"});
        switch (m_random.between(0, 4)) {
        case 0:
            block += R"(Edit","input":{"file_path":"/home/dev/webshop/src/order.ts",)"
                     R"("old_string":")";
            m_texts.appendSource(block, m_random.spread(60, 2'000), m_random);
            block += R"(","new_string":")";
            m_texts.appendSource(block, m_random.spread(60, 3'000), m_random);
            return block + R"(","replace_all":false}})";
        case 1:
            block += R"(Write","input":{"file_path":"/home/dev/webshop/src/label.ts","content":")";
            m_texts.appendSource(block, m_random.spread(300, 12'000), m_random);
            return block + R"("}})";
        case 2:
            return block
                + R"(Read","input":{"file_path":"/home/dev/webshop/src/order.ts",)"
                  R"("offset":)"
                + number(1, 900) + R"(,"limit":200}})";
        default:
            block += R"(Bash","input":{"command":"npm test -- )";
            block += m_random.hexadecimal(8);
            return block + R"( 2>&1 | tail -50","description":"Run the tests of the order"}})";
        }
    }

    TokenUsage drawTokens()
    {
        return {.inputTokens = m_random.between(1, 60),
                .outputTokens = m_random.spread(1, 8'000),
                .cacheCreationTokens = m_random.spread(1, 30'000),
                .cacheReadTokens = m_random.between(12'000, 160'000)};
    }

    static std::string usage(const TokenUsage &tokens)
    {
        const std::string input = std::to_string(tokens.inputTokens);
        const std::string output = std::to_string(tokens.outputTokens);
        const std::string created = std::to_string(tokens.cacheCreationTokens);
        const std::string read = std::to_string(tokens.cacheReadTokens);
        const std::string creation = joined({R"("cache_creation":{"ephemeral_5m_input_tokens":)",
                                             created, R"(,"ephemeral_1h_input_tokens":0})"});
        return joined({R"({"input_tokens":)",
                       input,
                       R"(,"cache_creation_input_tokens":)",
                       created,
                       R"(,"cache_read_input_tokens":)",
                       read,
                       ",",
                       creation,
                       R"(,"output_tokens":)",
                       output,
                       R"(,"server_tool_use":{"web_search_requests":0,"web_fetch_requests":0},)"
                       R"("service_tier":"standard","inference_geo":"not_available",)"
                       R"("iterations":[{"input_tokens":)",
                       input,
                       R"(,"output_tokens":)",
                       output,
                       R"(,"cache_read_input_tokens":)",
                       read,
                       R"(,"cache_creation_input_tokens":)",
                       created,
                       ",",
                       creation,
                       R"(,"type":"message"}],"speed":"standard"})"});
    }

    /// One block of an answer. Every block stands in a line of its own, all with the same usage.
    void writeAnswer(std::string_view block)
    {
        std::string line = beginning("assistant");
        line +=
            joined({R"("message":{"model":")", m_model, R"(","id":"msg_)", m_answerId,
                    R"(","type":"message","role":"assistant","content":[)", block,
                    R"(],"stop_reason":null,"stop_sequence":null,"usage":)", usage(m_answerTokens),
                    R"(},"requestId":"req_)", m_answerId, R"(","type":"assistant")"});
        end(line);
        m_log.writeUsage(line, UsageProvider::Claude, m_model, m_answerTokens);
    }

    void writePrompt()
    {
        std::string line = beginning("user");
        line += R"("type":"user","message":{"role":"user","content":")";
        m_texts.appendProse(line, m_random.spread(30, 2'000), m_random);
        line += R"("},"permissionMode":"default")";
        end(line);
        m_log.write(line);
        beginAnswer();
    }

    void beginAnswer()
    {
        m_answerId = m_random.hexadecimal(24);
        m_answerTokens = drawTokens();
    }

    void writeToolCall()
    {
        const std::string toolId = "toolu_" + m_random.hexadecimal(24);
        if (m_random.oneIn(3))
            writeAnswer(thinkingBlock());
        if (m_random.oneIn(3))
            writeAnswer(textBlock(m_random.spread(60, 800)));
        writeAnswer(toolBlock(toolId));
        if (m_random.oneIn(3))
            writeHookProgress(toolId);
        writeToolResult(toolId);
        beginAnswer();
    }

    void writeHookProgress(std::string_view toolId)
    {
        std::string line = beginning("progress");
        line += joined({R"("type":"progress","data":{"type":"hook_progress","hookEvent":)"
                        R"("PostToolUse","hookName":"PostToolUse:Bash","command":"callback"},)"
                        R"("parentToolUseID":")",
                        toolId, R"(","toolUseID":")", toolId, R"(")"});
        end(line);
        m_log.write(line);
    }

    /// The output stands in such a line twice: as the model saw it, and as the tool gave it.
    void writeToolResult(std::string_view toolId)
    {
        std::string output;
        m_texts.appendOutput(output, m_random.spread(80, 48'000, 1.1), m_random);
        std::string line = beginning("user");
        line += joined({R"("type":"user","message":{"role":"user","content":[{"tool_use_id":")",
                        toolId, R"(","type":"tool_result","content":")", output,
                        R"(","is_error":false}]},"toolUseResult":{"stdout":")", output,
                        R"(","stderr":"","interrupted":false,"isImage":false},)"
                        R"("sourceToolAssistantUUID":")",
                        m_random.uuid(), R"(")"});
        end(line);
        m_log.write(line);
    }

    Random &m_random;
    const TextPool &m_texts;
    LogWriter m_log;
    std::string m_sessionId;
    std::string m_agentId; ///< empty in the session's own transcript
    std::string_view m_model;
    std::string m_lastId; ///< of the line before
    std::string m_answerId;
    TokenUsage m_answerTokens;
};

} // namespace

void writeClaudeSession(Workshop &workshop, std::int64_t size)
{
    Random &random = workshop.random;
    const std::string id = random.uuid();
    const std::filesystem::path folder =
        std::filesystem::path(".claude/projects") / random.pick(projects);
    const Instant start = workshop.sessionStart();
    const std::int64_t agents = size > 200'000 ? random.between(0, 4) : 0;
    const std::int64_t agentSize = size / 12;

    Transcript session(workshop, folder / (id + ".jsonl"), id, {}, start);
    session.write(size - agents * agentSize);
    for (std::int64_t agent = 0; agent < agents; ++agent) {
        const std::string agentId = random.hexadecimal(7);
        const auto stem = folder / id / "subagents" / ("agent-" + agentId);
        Transcript(workshop, stem.string() + ".jsonl", id, agentId, start).write(agentSize);
        writeDocument(workshop, stem.string() + ".meta.json",
                      R"({"agentType":"Explore","description":"Find where totals are rounded"})");
        session.writeAgentResult();
    }
    writeDocument(
        workshop, std::filesystem::path(".claude/todos") / (id + ".json"),
        R"([{"content":"Round once per line","status":"completed","activeForm":"Rounding"}])");
}

} // namespace tallyglass::bench
