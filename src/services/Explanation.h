#pragma once

#include "model/AnswerCounting.h"
#include "model/RateLimitUsage.h"
#include "model/UsageWindowKind.h"
#include "platform/Host.h"

#include <optional>
#include <string>
#include <vector>

class QTimeZone;

namespace tallyglass {

struct CollectionProgress;

/// A record that a figure is made of.
struct Contribution
{
    std::string path; ///< of its file, in the file system's encoding
    std::uint32_t line = 0;
    Instant date;
    std::optional<QString> model;
    TokenUsage tokens;
};

/// A limit as one record states it.
struct LimitReading
{
    std::string path;
    std::uint32_t line = 0;
    std::size_t fileOrder = 0;
    std::size_t indexInFile = 0;
    Instant date;
    RateLimitUsage limit;
};

/// Where the figures of one tool in one window come from.
struct Explanation
{
    UsageProvider provider = UsageProvider::Codex;
    std::vector<Contribution> contributions; ///< most tokens first
    TokenUsage sum;
    std::vector<LimitReading> limits; ///< that fit the window: the one in force, then the others
};

/// One explanation for each tool, in the order of allProviders.
std::vector<Explanation> explain(const Host &host, UsageWindowKind window, Instant now,
                                 const QTimeZone &zone, Counting counting,
                                 CollectionProgress &progress);

} // namespace tallyglass
