#include "collect/LogFiles.h"

#include "platform/Files.h"
#include "platform/Host.h"

#include <algorithm>
#include <array>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string_view>
#include <sys/stat.h>

namespace tallyglass {

namespace {

constexpr std::array<std::string_view, 4> acceptedExtensions{"json", "jsonl", "ndjson", "log"};

/// The lower-cased extension; none for a name that only begins with a full stop.
std::string extensionOf(std::string_view name)
{
    const std::size_t stop = name.rfind('.');
    if (stop == std::string_view::npos || stop == 0)
        return {};
    std::string extension(name.substr(stop + 1));
    std::ranges::transform(extension, extension.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                    : character;
    });
    return extension;
}

bool isLogName(std::string_view name)
{
    return std::ranges::find(acceptedExtensions, extensionOf(name)) != acceptedExtensions.end();
}

/// POSIX and the BSDs name the member differently.
template<typename Status>
timespec modificationTime(const Status &status)
{
    if constexpr (requires { status.st_mtimespec; })
        return status.st_mtimespec;
    else
        return status.st_mtim;
}

/// The file as the collection knows it; nothing when it is not to be read.
std::optional<LogFile> logFile(UsageProvider provider, std::string path, const struct stat &status,
                               Instant cutoff)
{
    const timespec time = modificationTime(status);
    const Instant modified{std::chrono::floor<std::chrono::milliseconds>(
        std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec})};
    if (!S_ISREG(status.st_mode) || modified < cutoff || status.st_size > largestFileRead)
        return std::nullopt;
    const bool isDocument = extensionOf(path) == "json";
    return LogFile{.provider = provider,
                   .path = std::move(path),
                   .modified = modified,
                   .size = status.st_size,
                   .isDocument = isDocument};
}

void scanRoot(UsageProvider provider, std::string root, Instant cutoff, std::vector<LogFile> &files)
{
    const std::size_t firstOfRoot = files.size();
    std::vector<std::string> folders{std::move(root)};
    while (!folders.empty()) {
        const std::string folder = std::move(folders.back());
        folders.pop_back();
        const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder.c_str()), closedir);
        if (!entries)
            continue;
        while (const dirent *entry = readdir(entries.get())) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            // The entry's type mostly spares the look at the file itself.
            const bool mayBeFile = entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN;
            const bool isAccepted = mayBeFile && isLogName(name);
            bool isFolder = entry->d_type == DT_DIR;
            struct stat status{};
            if ((isAccepted || entry->d_type == DT_UNKNOWN)
                && fstatat(dirfd(entries.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
                isFolder = S_ISDIR(status.st_mode);
            if (isFolder) {
                std::string path = folder + '/' + entry->d_name;
                if (!isPackage(path))
                    folders.push_back(std::move(path));
            } else if (isAccepted) {
                if (auto file = logFile(provider, folder + '/' + entry->d_name, status, cutoff))
                    files.push_back(std::move(*file));
            }
        }
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(firstOfRoot), files.end(),
              [](const LogFile &a, const LogFile &b) { return a.path < b.path; });
}

} // namespace

std::vector<LogFile> findLogFiles(const std::string &home, Instant cutoff)
{
    std::vector<LogFile> files;
    for (const UsageProvider provider : allProviders) {
        for (const std::string_view folder : factsOf(provider).logFolders)
            scanRoot(provider, home + '/' + std::string(folder), cutoff, files);
    }

    std::string path = home + '/' + ownFolder + '/' + statuslineFile;
    struct stat status{};
    if (stat(path.c_str(), &status) == 0) {
        if (auto file = logFile(UsageProvider::Claude, std::move(path), status, cutoff))
            files.push_back(std::move(*file));
    }
    return files;
}

} // namespace tallyglass
