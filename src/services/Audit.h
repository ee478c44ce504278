#pragma once

#include "collect/LogFiles.h"
#include "model/AnswerCounting.h"
#include "model/UsageWindowKind.h"
#include "platform/Host.h"

#include <array>
#include <vector>

class QTimeZone;

namespace tallyglass {

struct CollectionProgress;

/// Why the two ways of counting differ: the verdicts, and what is not one record's fault.
enum class DifferenceCause : std::uint8_t {
    Block,
    Resumed,
    InnerCopy,
    Repeat,
    Replay,
    RunningTotal,
    Parts, ///< cached and reasoning tokens, which are in input and output already
    EarlierRun, ///< a run that a later record of its session hides
    StatedTotal, ///< totals that the logs state, where they are no sum of counters
    Count,
};

/// Tokens and records that one cause makes up.
struct Difference
{
    std::int64_t tokens = 0; ///< below 0: every record counts too little
    std::int64_t records = 0;
};

/// Both ways of counting, for one tool in one window.
struct AuditedUsage
{
    UsageWindowKind window = UsageWindowKind::FiveHours;
    UsageProvider provider = UsageProvider::Codex;
    std::int64_t everyRecord = 0; ///< tokens
    std::int64_t eachAnswerOnce = 0; ///< tokens
    /// By DifferenceCause; they add up to the difference of the two.
    std::array<Difference, static_cast<std::size_t>(DifferenceCause::Count)> differences;
};

struct Audit
{
    std::vector<AuditedUsage> usages; ///< by window, then by tool
    std::vector<PassedOverLog> passedOver; ///< by path
};

/// Reads all logs twice: once to count, once for what is not read.
Audit audit(const Host &host, Instant now, const QTimeZone &zone, CollectionProgress &progress);

} // namespace tallyglass
