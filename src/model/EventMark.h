#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace tallyglass {

/// Where an event stands in its file, and how it is told from copies of the same usage. Made only
/// for those who ask, beside the events.
struct EventMark
{
    enum class Kind : std::uint8_t {
        Plain, ///< nothing tells copies of it apart: it counts as it stands
        Answer, ///< a model's answer under its id, of which there may be many copies
        InnerCopy, ///< what a tool retells of its own use; the calls stand elsewhere
        RunningTotal, ///< a sum of usage that stands elsewhere
        TokenCount, ///< a state of a Codex thread
        Run, ///< one run of the Copilot CLI, which counts its parts twice
    };
    Kind kind = Kind::Plain;
    bool isRetold = false; ///< of an answer: told by a record about another one's progress
    bool isRecord = true; ///< false: a later record of the file stands for it as well
    std::uint32_t line = 0; ///< at which the record begins, from 1 on; 0: not asked for

    // Hashes; 0: there is none.
    std::uint64_t identity = 0; ///< answer: id and input; token count: the thread's total
    std::uint64_t call = 0; ///< answer: the request; token count: the call's own usage

    std::int64_t part = 0; ///< tokens: of a thread the cached input, of a run the reasoning
};

/// The marks of one file's events, in their order.
struct FileMarks
{
    bool isFork = false; ///< a Codex thread that begins with what another one did
    bool hasLines = false; ///< lines are asked for too
    std::uint32_t line = 0; ///< of the record that is being read
    std::vector<EventMark> events;
};

/// Adds a value to a hash that is never 0 again. Not for keeping: it may differ between systems.
constexpr std::uint64_t withHashed(std::uint64_t hash, std::uint64_t value)
{
    // The finalizer of SplitMix64.
    hash = (hash ^ value) + 0x9e37'79b9'7f4a'7c15;
    hash = (hash ^ hash >> 30) * 0xbf58'476d'1ce4'e5b9;
    hash = (hash ^ hash >> 27) * 0x94d0'49bb'1331'11eb;
    return (hash ^ hash >> 31) | 1;
}

inline std::uint64_t hashed(std::string_view text)
{
    return withHashed(0, std::hash<std::string_view>{}(text));
}

} // namespace tallyglass
