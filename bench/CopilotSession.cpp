#include "Sessions.h"

namespace tallyglass::bench {

namespace {

class EventFile
{
public:
    EventFile(Workshop &workshop, const std::filesystem::path &path, Instant start)
        : m_random(workshop.random)
        , m_texts(workshop.texts)
        , m_log(workshop, path, start)
    {
    }

    void write(std::int64_t size)
    {
        write("session.start",
              joined({R"({"sessionId":")", m_random.uuid(),
                      R"(","version":1,"producer":"copilot-agent","copilotVersion":"1.0.77",)"
                      R"("startTime":")",
                      m_log.timestamp(), R"("})"}));
        while (m_log.size() < size) {
            std::string prompt = R"({"content":")";
            m_texts.appendProse(prompt, m_random.spread(40, 2'000), m_random);
            write("user.message", prompt + R"(","attachments":[]})");
            for (std::int64_t call = m_random.between(1, 10); call > 0; --call)
                writeToolCall();
        }
        writeShutdown();
    }

private:
    std::string event(std::string_view type, std::string_view data)
    {
        return joined({R"({"type":")", type, R"(","data":)", data, R"(,"id":")", m_random.uuid(),
                       R"(","timestamp":")", m_log.timestamp(), R"(","parentId":")",
                       m_random.uuid(), R"("})"});
    }

    void write(std::string_view type, std::string_view data) { m_log.write(event(type, data)); }

    void writeToolCall()
    {
        const std::string callId = "call_" + m_random.hexadecimal(24);
        std::string message = R"({"messageId":"m","content":")";
        m_texts.appendProse(message, m_random.spread(40, 1'500), m_random);
        write("assistant.message",
              joined({message, R"(","toolRequests":[{"toolCallId":")", callId,
                      R"(","name":"bash","arguments":{"command":"make check"}}]})"}));
        write("tool.execution_start",
              joined({R"({"toolCallId":")", callId,
                      R"(","toolName":"bash","arguments":{"command":"make check"}})"}));
        std::string result =
            joined({R"({"toolCallId":")", callId, R"(","success":true,"result":{"content":")"});
        m_texts.appendOutput(result, m_random.spread(100, 50'000, 1.2), m_random);
        write("tool.execution_complete", result + R"("},"toolTelemetry":{}})");
    }

    void writeShutdown()
    {
        constexpr std::string_view model = "claude-haiku-4.5";
        const std::int64_t input = m_random.between(20'000, 4'000'000);
        const std::int64_t output = m_random.between(1'000, 60'000);
        const std::int64_t read = input / 10 * 9;
        const std::int64_t written = input / 20;
        const std::int64_t reasoning = output / 4;
        const std::string metrics = joined(
            {R"({")", model, R"(":{"requests":{"count":31,"cost":10.23},"usage":{"inputTokens":)",
             std::to_string(input), R"(,"outputTokens":)", std::to_string(output),
             R"(,"cacheReadTokens":)", std::to_string(read), R"(,"cacheWriteTokens":)",
             std::to_string(written), R"(,"reasoningTokens":)", std::to_string(reasoning),
             R"(},"totalNanoAiu":0}})"});
        m_log.writeUsage(event("session.shutdown",
                               joined({R"({"shutdownType":"routine","totalPremiumRequests":10.23,)"
                                       R"("totalApiDurationMs":181233,"modelMetrics":)",
                                       metrics, R"(,"currentModel":")", model, R"("})"})),
                         UsageProvider::Copilot, model,
                         {.inputTokens = input,
                          .outputTokens = output + reasoning,
                          .cacheCreationTokens = written,
                          .cacheReadTokens = read});
    }

    Random &m_random;
    const TextPool &m_texts;
    LogWriter m_log;
};

} // namespace

void writeCopilotSession(Workshop &workshop, std::int64_t size)
{
    const auto folder = std::filesystem::path(".copilot/session-state") / workshop.random.uuid();
    EventFile(workshop, folder / "events.jsonl", workshop.sessionStart()).write(size);
    writeDocument(workshop, folder / "vscode.metadata.json", R"({"workspace":"webshop"})");
}

} // namespace tallyglass::bench
