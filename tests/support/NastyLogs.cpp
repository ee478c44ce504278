#include "support/NastyLogs.h"

#include <array>

namespace tallyglass::test {

QByteArray NastyLogs::lines()
{
    QByteArray content;
    for (unsigned count = below(40); count > 0; --count) {
        content += oneOf({"", "", " ", "\t", "\u3000", "\u2028 ", "\uFEFF", "\v\f"});
        content += line() + oneOf({"", "", " ", "\u00A0\r", "\u0085"});
        content += oneOf({"\n", "\n", "\r\n", "\n\n", "\r"});
    }
    return damaged(content);
}

QByteArray NastyLogs::document()
{
    QList<QByteArray> values;
    for (unsigned count = below(8); count > 0; --count)
        values += record();
    const QByteArray list = "[" + values.join(oneOf({",", ",\n", " , "})) + "]";
    return damaged(oneOf({"", "\n", " \t"}) + list + oneOf({"", "", "\r\n", "]", "\u00A0"}));
}

QByteArray NastyLogs::oneOf(const QList<QByteArray> &choices)
{
    return choices[below(static_cast<unsigned>(choices.size()))];
}

/// Text for a string of any length, seldom about that of the reader's buffer.
QByteArray NastyLogs::filler()
{
    const unsigned length = below(100) == 0 ? 256 * 1024 - 300 + below(400) : below(300);
    return oneOf({"", "あ", "é", "\u2028", R"(\")", R"(\n)"}) + QByteArray(length, 'x');
}

QByteArray NastyLogs::record()
{
    const QByteArray shutdown = R"({"type":"session.shutdown","timestamp":NUMBER,"data":{)"
                                R"("modelMetrics":{"FILLER":{"usage":{"inputTokens":NUMBER}}}}})";
    return oneOf({R"({"a":"FILLER","message":{"model":"m","usage":{"input_tokens":NUMBER}}})",
                  R"({"a":"FILLER","message":{"model":"m","usage":{"input_tokens":NUMBER}}})",
                  R"({"a":"FILLER", "total\u005ftokens":NUMBER,"timestamp":"2026-02-12"})",
                  R"({"rate_limits":{"five_hour":{"used_percent":NUMBER}},"a":"FILLER"})",
                  R"({"a":"FILLER","rate\u005Flimit_info":[{"window_minutes":NUMBER}]})",
                  R"({"model":"\ud83dFILLER","output_tokens":NUMBER})",
                  R"({"a":1e999,"b":"FILLER","output_tokens":NUMBER})",
                  R"([{"completion_tokens":NUMBER},{"a":"FILLER"},{"prompt_tokens":NUMBER}])",
                  shutdown, shutdown, shutdown})
        .replace("FILLER", filler())
        .replace("NUMBER", QByteArray::number(1 + below(1'000)));
}

QByteArray NastyLogs::line()
{
    const QByteArray sound = record();
    const QByteArray broken =
        oneOf({sound.chopped(1 + below(5)), sound + sound, "INFO " + sound, sound.mid(1),
               QByteArray(sound).insert(1, QByteArray(1, '\0'))});
    const QByteArray other =
        oneOf({"", R"({"type":"user","text":"FILLER"})", R"({"a":"\"input_tokens\":5 FILLER"})",
               R"({"a":"rate_limit_tokens"})", R"("input_tokens")", "FILLER", "\u2028"})
            .replace("FILLER", filler());
    return oneOf({sound, sound, sound, broken, other, other});
}

/// Sometimes cuts the content off, sometimes puts bytes into it that are not UTF-8.
QByteArray NastyLogs::damaged(QByteArray content)
{
    if (below(5) == 0)
        content.chop(below(4));
    if (below(5) == 0) {
        const auto end = static_cast<unsigned>(content.size());
        const unsigned place = std::array{0U, end, below(end + 1)}[below(3)];
        content.insert(place, oneOf({"\xff", "\xc3", "\xed\xa0\x80", "\xf0\x9f\x98", "\xc0\x80"}));
    }
    return content;
}

} // namespace tallyglass::test
