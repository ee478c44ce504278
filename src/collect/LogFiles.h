#pragma once

#include "model/Instant.h"
#include "model/UsageProvider.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tallyglass {

/// A larger file is not read.
inline constexpr std::int64_t largestFileRead = 33'554'432; // bytes

/// One file that the collection reads.
struct LogFile
{
    UsageProvider provider = UsageProvider::Codex;
    std::string path; ///< in the file system's encoding
    Instant modified;
    std::int64_t size = 0; ///< bytes
    bool isDocument = false; ///< one JSON document (".json"), else one on each line

    bool operator==(const LogFile &) const = default;
};

/// The log files of all tools below a home folder that were modified at or after \a cutoff: the
/// roots in their fixed order, within each by path, and last the file of the status line bridge.
///
/// Links below a root are not followed and packages (".app" and the like) not entered. What cannot
/// be read is passed over.
std::vector<LogFile> findLogFiles(const std::string &home, Instant cutoff);

} // namespace tallyglass
