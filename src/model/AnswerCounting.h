#pragma once

#include "model/EventMark.h"
#include "model/UsageEvent.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tallyglass {

/// Two ways of counting.
enum class Counting : std::uint8_t {
    EveryRecord, ///< what the logs state, each record
    EachAnswerOnce, ///< what the models were asked and answered
};

/// An event's tokens, with what tells copies of them apart.
struct MarkedUse
{
    MarkedUse(const UsageEvent &event, const EventMark &eventMark);

    UsageProvider provider;
    Instant date;
    std::optional<QString> model;
    TokenUsage usage; ///< as the record states it
    EventMark mark;
};

/// All uses of one file, in its order.
struct FileUses
{
    std::size_t order = 0; ///< of the file among all
    std::string path; ///< in the file system's encoding
    bool isFork = false;
    std::vector<MarkedUse> uses;
};

/// Why a use does or does not count, when each answer counts once.
enum class Verdict : std::uint8_t {
    Counts,
    Block, ///< another content block of the answer, in the same file
    Resumed, ///< a copy in the file of a resumed or forked session
    InnerCopy, ///< retold by the record of a tool or of its progress
    Repeat, ///< the same state of a thread again
    Replay, ///< what a forked thread or sub-agent began with
    RunningTotal,
    Count,
};

/// One verdict for each use of each file. \a files must be in the order of reading.
std::vector<std::vector<Verdict>> judge(std::span<const FileUses> files);

/// What a use adds to the sums, nothing when it does not count. Where each answer counts once,
/// cached and reasoning tokens are parts of input and output.
std::optional<TokenUsage> countedUsage(const MarkedUse &use, Verdict verdict, Counting counting);

} // namespace tallyglass
