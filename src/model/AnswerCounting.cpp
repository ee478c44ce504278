#include "model/AnswerCounting.h"

#include <algorithm>
#include <tuple>
#include <unordered_set>

namespace tallyglass {

namespace {

using Kind = EventMark::Kind;
using Verdicts = std::vector<std::vector<Verdict>>;

/// One copy of an answer, and where it stands.
struct Copy
{
    const MarkedUse *use;
    std::size_t file;
    std::size_t index;

    bool isOfSameAnswer(const Copy &other) const
    {
        // Records of progress, and the desktop's, leave the request out.
        return use->mark.identity == other.use->mark.identity
            && (use->mark.call == other.use->mark.call || use->mark.call == 0
                || other.use->mark.call == 0);
    }
};

/// Which of two copies of one answer counts: the one that was complete, and of equal ones the
/// first.
bool isBefore(const Copy &a, const Copy &b)
{
    const auto rank = [](const Copy &copy) {
        return std::tuple(-copy.use->usage.outputTokens, copy.use->mark.isRetold, copy.use->date,
                          copy.file, copy.index);
    };
    return rank(a) < rank(b);
}

/// Lets one copy of each answer count.
void judgeAnswers(std::span<const FileUses> files, Verdicts &verdicts)
{
    std::vector<Copy> copies;
    for (std::size_t file = 0; file < files.size(); ++file) {
        for (std::size_t i = 0; i < files[file].uses.size(); ++i) {
            if (files[file].uses[i].mark.kind == Kind::Answer)
                copies.push_back({.use = &files[file].uses[i], .file = file, .index = i});
        }
    }
    // Of one identity those without a request come last, and so fall to a request before them.
    std::ranges::sort(copies, std::ranges::greater{}, [](const Copy &copy) {
        return std::tuple(copy.use->mark.identity, copy.use->mark.call);
    });
    for (auto first = copies.begin(); first != copies.end();) {
        const auto end = std::find_if_not(
            first, copies.end(), [&](const Copy &copy) { return copy.isOfSameAnswer(*first); });
        const Copy counts = *std::min_element(first, end, isBefore);
        for (; first != end; ++first) {
            const bool isRetold = first->use->mark.isRetold;
            Verdict &verdict = verdicts[first->file][first->index];
            if (first->use == counts.use)
                verdict = Verdict::Counts;
            else if (isRetold)
                verdict = Verdict::InnerCopy;
            else
                verdict = first->file == counts.file ? Verdict::Block : Verdict::Resumed;
        }
    }
}

/// Takes out repeats within each thread, and what forks begin with.
void judgeThreads(std::span<const FileUses> files, Verdicts &verdicts)
{
    const auto state = [](const MarkedUse &use) {
        return withHashed(use.mark.identity, use.mark.call);
    };
    const auto hasState = [](const MarkedUse &use) {
        return use.mark.kind == Kind::TokenCount && use.mark.identity != 0;
    };

    for (std::size_t file = 0; file < files.size(); ++file) {
        std::uint64_t total = 0; // of the thread so far
        for (std::size_t i = 0; i < files[file].uses.size(); ++i) {
            const MarkedUse &use = files[file].uses[i];
            if (hasState(use) && std::exchange(total, use.mark.identity) == use.mark.identity)
                verdicts[file][i] = Verdict::Repeat;
        }
    }

    if (std::ranges::none_of(files, &FileUses::isFork))
        return;
    std::unordered_set<std::uint64_t> states;
    const auto addStates = [&](const FileUses &file) {
        for (const MarkedUse &use : file.uses) {
            if (hasState(use))
                states.insert(state(use));
        }
    };
    for (const FileUses &file : files) {
        if (!file.isFork)
            addStates(file);
    }
    for (std::size_t file = 0; file < files.size(); ++file) {
        if (!files[file].isFork)
            continue;
        for (std::size_t i = 0; i < files[file].uses.size(); ++i) {
            const MarkedUse &use = files[file].uses[i];
            if (!hasState(use) || verdicts[file][i] == Verdict::Repeat)
                continue;
            if (!states.contains(state(use)))
                break;
            verdicts[file][i] = Verdict::Replay;
        }
        // Of two forks whose parent is gone, the first keeps what they share.
        addStates(files[file]);
    }
}

} // namespace

MarkedUse::MarkedUse(const UsageEvent &event, const EventMark &eventMark)
    : provider(event.provider)
    , date(event.date)
    , model(event.model)
    , usage(event.usage)
    , mark(eventMark)
{
}

std::vector<std::vector<Verdict>> judge(std::span<const FileUses> files)
{
    Verdicts verdicts;
    for (const FileUses &file : files) {
        auto &ofFile = verdicts.emplace_back(file.uses.size(), Verdict::Counts);
        for (std::size_t i = 0; i < ofFile.size(); ++i) {
            if (file.uses[i].mark.kind == Kind::InnerCopy)
                ofFile[i] = Verdict::InnerCopy;
            else if (file.uses[i].mark.kind == Kind::RunningTotal)
                ofFile[i] = Verdict::RunningTotal;
        }
    }
    judgeAnswers(files, verdicts);
    judgeThreads(files, verdicts);
    return verdicts;
}

std::optional<TokenUsage> countedUsage(const MarkedUse &use, Verdict verdict, Counting counting)
{
    if (counting == Counting::EveryRecord)
        return use.mark.isRecord ? std::optional{use.usage} : std::nullopt;
    if (verdict != Verdict::Counts)
        return std::nullopt;
    TokenUsage usage = use.usage;
    // A part that exceeds the whole is cut, so that the whole stays what it is.
    const auto takeFromInput = [&usage](std::int64_t part) {
        part = std::clamp<std::int64_t>(part, 0, std::max<std::int64_t>(usage.inputTokens, 0));
        usage.inputTokens -= part;
        return part;
    };
    switch (use.mark.kind) {
    case Kind::TokenCount:
        usage.cacheReadTokens = checkedSum(usage.cacheReadTokens, takeFromInput(use.mark.part));
        break;
    case Kind::Run:
        usage.outputTokens -= use.mark.part;
        usage.cacheReadTokens = takeFromInput(usage.cacheReadTokens);
        usage.cacheCreationTokens = takeFromInput(usage.cacheCreationTokens);
        break;
    case Kind::Plain:
    case Kind::Answer:
    case Kind::InnerCopy:
    case Kind::RunningTotal:
        break;
    }
    return usage;
}

} // namespace tallyglass
