#pragma once

#include "model/Instant.h"
#include "model/RateLimitUsage.h"
#include "model/TokenUsage.h"
#include "model/UsageProvider.h"

#include <QString>

#include <optional>
#include <vector>

namespace tallyglass {

/// One token-usage or rate-limit observation taken from a local log. It may carry tokens, limits or
/// both.
struct UsageEvent
{
    UsageProvider provider = UsageProvider::Codex;
    Instant date;
    std::optional<QString> model; ///< as the record names it
    TokenUsage usage;
    QString source; ///< name of the file that the record came from, without its folder
    std::vector<RateLimitUsage> rateLimits;

    bool operator==(const UsageEvent &) const = default;
};

} // namespace tallyglass
