#pragma once

#include "model/Instant.h"
#include "model/UsageProvider.h"
#include "platform/Host.h"

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

/// A log that is not read, or not all of it.
struct PassedOverLog
{
    enum class Reason : std::uint8_t {
        TooLarge,
        Compressed,
        Unreadable, ///< the file, or a folder with all that is in it
        NotUtf8,
        BrokenLines,
        TornLine, ///< the last one; perhaps it is being written
    };
    Reason reason = Reason::TooLarge;
    std::string path; ///< in the file system's encoding
    std::int64_t size = 0; ///< bytes; of a folder 0
    std::vector<std::uint32_t> lines; ///< the broken ones, from 1 on
};

/// The log files of all tools that were modified at or after \a cutoff: those below the home folder
/// in the fixed order of the roots, within each by path, then those where the environment has moved
/// a tool's data, and last the file of the status line bridge. A folder that belongs to two roots
/// is the first one's.
///
/// Links below a root are not followed and packages (".app" and the like) not entered. What cannot
/// be read is passed over, and added to \a passedOver if that is given.
std::vector<LogFile> findLogFiles(const Host &host, Instant cutoff,
                                  std::vector<PassedOverLog> *passedOver = nullptr);

} // namespace tallyglass
