#include "TextPool.h"

#include <algorithm>
#include <array>

namespace tallyglass::bench {

namespace {

constexpr std::array<std::string_view, 24> names{
    "order",   "customer", "basket",  "shipment",  "invoice", "price",  "discount",  "stock",
    "session", "payment",  "address", "warehouse", "parcel",  "refund", "catalogue", "label",
    "cursor",  "request",  "handler", "settings",  "locale",  "retry",  "timeout",   "usage"};
constexpr std::array<std::string_view, 12> verbs{"load",  "store", "find",   "merge",
                                                 "price", "print", "reduce", "validate",
                                                 "send",  "await", "group",  "count"};
constexpr std::array<std::string_view, 12> englishSentences{
    "The total is rounded once per line and once per order, which is why the sums differ. ",
    "I'll look at the tests first, then change the reader.",
    "Every caller passes the zone, so the default argument can go. ",
    "All 214 tests pass now \u2705 ",
    "Two places still build the address by hand:\\n\\n- `src/checkout/address.ts`\\n- "
    "`src/export/label.ts`\\n",
    "It fails because the fixture is older than the change of clocks. ",
    "Please keep the public names as they are. ",
    "Done \\ud83d\\ude80 The build takes 12 s instead of 40 s. ",
    "The limit of 100 requests a minute is hit when the nightly job runs at the same time. ",
    "\\\"Keep it simple\\\" was the wish, so there is no cache. ",
    "na\\u00efve caf\\u00e9 \\u2014 these escapes come from a tool that writes ASCII only. ",
    "See the note on input_tokens in docs/accounting.md before touching this. "};
constexpr std::array<std::string_view, 6> japaneseSentences{
    "請求書の合計が一致しない原因を調べています。",
    "テストはすべて成功しました。次に設定画面を直します。",
    "この関数は二回呼ばれるため、結果を保存しておく必要があります。",
    "\\u3053\\u306e\\u884c\\u306f\\u30a8\\u30b9\\u30b1\\u30fc\\u30d7\\u3055\\u308c\\u3066"
    "\\u3044\\u307e\\u3059\\u3002",
    "注文の一覧を日付の新しい順に並べ替えました。",
    "エラーが発生した場合は、もう一度お試しください。"};

std::string number(Random &random, std::int64_t most = 9'999)
{
    return std::to_string(random.between(0, most));
}

std::string_view word(Random &random)
{
    return random.pick(names);
}

std::string call(Random &random)
{
    return joined({random.pick(verbs), "_", word(random)});
}

std::string sourceLine(Random &random)
{
    const std::string indent(static_cast<std::size_t>(random.between(0, 4)) * 4, ' ');
    switch (random.between(0, 8)) {
    case 0:
        return joined({indent, "const ", word(random), " = await ", call(random), "(", word(random),
                       ", { retries: ", number(random, 9), ", name: \\\"", word(random),
                       "\\\" });"});
    case 1:
        return joined({indent, "if (", word(random), ".", word(random), " >= ", number(random),
                       " && !", word(random), ".isEmpty) {"});
    case 2:
        return joined({indent, "}"});
    case 3:
        return "";
    case 4:
        return joined({indent, "// ", call(random), " must come first: the ", word(random),
                       " may be gone by then."});
    case 5:
        return joined({indent, "return ", word(random), ".map((", word(random), ") => ",
                       call(random), "(", word(random), ")).filter(Boolean);"});
    case 6:
        return joined({indent, "throw new Error(`no ", word(random), " for ${", word(random),
                       ".id}: \\\"${reason}\\\"`);"});
    case 7:
        return joined({"\\t\\t", word(random), " := ", call(random), "(ctx, &", word(random),
                       "{ID: ", number(random), "})"});
    default:
        return joined({indent, "expect(", call(random), "(", word(random), ")).toEqual({ ",
                       word(random), ": '", word(random), "', amount: ", number(random), " });"});
    }
}

std::string differenceLine(Random &random)
{
    if (random.oneIn(12))
        return joined({"@@ -", number(random, 900), ",7 +", number(random, 900), ",9 @@ ",
                       call(random), "()"});
    constexpr std::array<std::string_view, 4> marks{"+", "-", " ", " "};
    return joined({random.pick(marks), sourceLine(random)});
}

std::string buildLogLine(Random &random)
{
    switch (random.between(0, 5)) {
    case 0:
        return joined({"[", number(random, 400), "/400] Building CXX object src/", word(random),
                       "/CMakeFiles/", word(random), ".dir/", call(random), ".cpp.o"});
    case 1:
        return joined({"\\u001b[32mPASS\\u001b[0m src/", word(random), "/", word(random),
                       ".test.ts (", number(random, 20), ".", number(random, 9), " s)"});
    case 2:
        return joined({"src/", word(random), ".cpp:", number(random, 800), ":", number(random, 90),
                       ": warning: unused variable '", word(random), "' [-Wunused-variable]"});
    case 3:
        return joined({"2025-06-0", number(random, 8), "T10:", number(random, 59),
                       ":00Z INFO  [worker-", number(random, 7), "] ", call(random), " took ",
                       number(random), " ms"});
    case 4:
        return joined({"drwxr-xr-x  2 dev dev  4096 Jun  1 10:", number(random, 59), " ",
                       word(random), "-", random.hexadecimal(7)});
    default:
        return joined({"    at ", call(random), " (/home/dev/webshop/node_modules/", word(random),
                       "/dist/index.js:", number(random), ":", number(random, 120), ")"});
    }
}

std::string proseLine(Random &random)
{
    std::string line;
    const bool isJapanese = random.oneIn(4);
    for (std::int64_t sentence = random.between(1, 4); sentence > 0; --sentence)
        line += isJapanese ? random.pick(japaneseSentences) : random.pick(englishSentences);
    return line;
}

std::string jsonLine(Random &random)
{
    if (random.oneIn(40)) // An answer of the very interface that the tools call.
        return joined({"{\\\"usage\\\":{\\\"input_tokens\\\":", number(random),
                       ",\\\"output_tokens\\\":", number(random), "}}"});
    return joined({"{\\\"id\\\":\\\"", random.hexadecimal(12), "\\\",\\\"", word(random),
                   "\\\":{\\\"", word(random), "\\\":", number(random), ",\\\"tags\\\":[\\\"",
                   word(random), "\\\",\\\"", word(random),
                   "\\\"],\\\"note\\\":\\\"a \\\\\\\"quoted\\\\\\\" word\\\"}},"});
}

} // namespace

template<typename MakeLine>
TextPool::Kind TextPool::makeKind(MakeLine makeLine)
{
    constexpr std::size_t size = 512 * 1024; // bytes
    Kind kind;
    kind.text.reserve(size + 4'096);
    while (kind.text.size() < size) {
        kind.lineStarts.push_back(kind.text.size());
        kind.text += makeLine();
        kind.text += "\\n";
    }
    kind.lineStarts.push_back(kind.text.size());
    return kind;
}

TextPool::TextPool(Random &random)
    : m_source(makeKind([&] { return sourceLine(random); }))
    , m_difference(makeKind([&] { return differenceLine(random); }))
    , m_buildLog(makeKind([&] { return buildLogLine(random); }))
    , m_numberedFile(makeKind([&, line = 0]() mutable {
        line = line % 900 + 1;
        return "    " + std::to_string(line) + "→" + sourceLine(random);
    }))
    , m_prose(makeKind([&] { return proseLine(random); }))
    , m_base64(makeKind([&] {
        return random.characters(
            76, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
    }))
    , m_json(makeKind([&] { return jsonLine(random); }))
{
}

void TextPool::append(std::string &line, const Kind &kind, std::int64_t size, Random &random)
{
    const std::size_t end = line.size() + static_cast<std::size_t>(size);
    while (line.size() < end) {
        const auto first = static_cast<std::size_t>(
            random.between(0, static_cast<std::int64_t>(kind.lineStarts.size()) - 2));
        // Whole lines only: a cut could fall within an escape or a character.
        const std::size_t start = kind.lineStarts[first];
        const auto last = std::ranges::lower_bound(
            kind.lineStarts.begin() + static_cast<std::ptrdiff_t>(first) + 1,
            kind.lineStarts.end() - 1, start + (end - line.size()));
        line.append(kind.text, start, *last - start);
    }
}

void TextPool::appendOutput(std::string &line, std::int64_t size, Random &random) const
{
    const std::array kinds{&m_numberedFile, &m_numberedFile, &m_source,   &m_source,
                           &m_difference,   &m_difference,   &m_buildLog, &m_buildLog,
                           &m_buildLog,     &m_prose,        &m_base64,   &m_json};
    append(line, *random.pick(kinds), size, random);
}

void TextPool::appendProse(std::string &line, std::int64_t size, Random &random) const
{
    append(line, m_prose, size, random);
}

void TextPool::appendSource(std::string &line, std::int64_t size, Random &random) const
{
    append(line, m_source, size, random);
}

void TextPool::appendBase64(std::string &line, std::int64_t size, Random &random) const
{
    // Without line breaks, as signatures and encrypted reasoning are.
    for (std::int64_t left = size; left > 0; left -= 76) {
        const std::size_t lines = m_base64.lineStarts.size() - 1;
        const auto at =
            static_cast<std::size_t>(random.between(0, static_cast<std::int64_t>(lines) - 1));
        line.append(m_base64.text, m_base64.lineStarts[at], 76);
    }
}

} // namespace tallyglass::bench
