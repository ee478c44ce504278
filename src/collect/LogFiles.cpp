#include "collect/LogFiles.h"

#include "platform/Files.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
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

Instant modified(const struct stat &status)
{
    const timespec time = modificationTime(status);
    return Instant{std::chrono::floor<std::chrono::milliseconds>(
        std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec})};
}

using Reason = PassedOverLog::Reason;

/// One search for log files, from root to root.
class LogSearch
{
public:
    /// \a passedOver may be null.
    LogSearch(Instant cutoff, bool mayRootsOverlap, std::vector<PassedOverLog> *passedOver)
        : m_cutoff(cutoff)
        , m_mayRootsOverlap(mayRootsOverlap)
        , m_passedOver(passedOver)
    {
    }

    void scanRoot(UsageProvider provider, std::string root)
    {
        const std::size_t firstOfRoot = m_files.size();
        m_folders.push_back(std::move(root));
        while (!m_folders.empty()) {
            const std::string folder = std::move(m_folders.back());
            m_folders.pop_back();
            scanFolder(provider, folder);
        }
        std::sort(m_files.begin() + static_cast<std::ptrdiff_t>(firstOfRoot), m_files.end(),
                  [](const LogFile &a, const LogFile &b) { return a.path < b.path; });
    }

    /// Takes the file if it is to be read.
    void takeFile(UsageProvider provider, std::string path, const struct stat &status)
    {
        if (!S_ISREG(status.st_mode) || modified(status) < m_cutoff)
            return;
        if (status.st_size > largestFileRead) {
            passOver(Reason::TooLarge, std::move(path), status.st_size);
            return;
        }
        const bool isDocument = extensionOf(path) == "json";
        m_files.push_back({.provider = provider,
                           .path = std::move(path),
                           .modified = modified(status),
                           .size = status.st_size,
                           .isDocument = isDocument});
    }

    std::vector<LogFile> takeFiles() { return std::move(m_files); }

private:
    void scanFolder(UsageProvider provider, const std::string &folder)
    {
        const std::unique_ptr<DIR, int (*)(DIR *)> entries(opendir(folder.c_str()), closedir);
        if (!entries) {
            if (errno == EACCES)
                passOver(Reason::Unreadable, folder, 0);
            return;
        }
        if (m_mayRootsOverlap && !isFirstVisit(dirfd(entries.get())))
            return;
        while (const dirent *entry = readdir(entries.get())) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            // The entry's type mostly spares the look at the file itself.
            const bool mayBeFile = entry->d_type == DT_REG || entry->d_type == DT_UNKNOWN;
            const bool isAccepted = mayBeFile && isLogName(name);
            const bool isCompressed = mayBeFile && m_passedOver && extensionOf(name) == "zst";
            bool isFolder = entry->d_type == DT_DIR;
            struct stat status{};
            if ((isAccepted || isCompressed || entry->d_type == DT_UNKNOWN)
                && fstatat(dirfd(entries.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
                isFolder = S_ISDIR(status.st_mode);
            std::string path = folder + '/' + entry->d_name;
            if (isFolder) {
                if (!isPackage(path))
                    m_folders.push_back(std::move(path));
            } else if (isAccepted) {
                takeFile(provider, std::move(path), status);
            } else if (isCompressed && S_ISREG(status.st_mode) && modified(status) >= m_cutoff) {
                passOver(Reason::Compressed, std::move(path), status.st_size);
            }
        }
    }

    bool isFirstVisit(int folder)
    {
        struct stat status{};
        return fstat(folder, &status) != 0
            || m_visited.insert({status.st_dev, status.st_ino}).second;
    }

    void passOver(Reason reason, std::string path, std::int64_t size)
    {
        if (m_passedOver)
            m_passedOver->push_back({.reason = reason, .path = std::move(path), .size = size});
    }

    Instant m_cutoff;
    bool m_mayRootsOverlap;
    std::vector<PassedOverLog> *m_passedOver;
    std::vector<LogFile> m_files;
    std::vector<std::string> m_folders; ///< yet to be scanned
    std::set<std::pair<dev_t, ino_t>> m_visited;
};

} // namespace

std::vector<LogFile> findLogFiles(const Host &host, Instant cutoff,
                                  std::vector<PassedOverLog> *passedOver)
{
    const std::string home = QFile::encodeName(host.homeFolder).toStdString();
    const bool isAnyMoved =
        std::ranges::any_of(host.movedHomes, [](const QString &moved) { return !moved.isEmpty(); });
    LogSearch search(cutoff, isAnyMoved, passedOver);
    for (const UsageProvider provider : allProviders) {
        for (const std::string_view folder : factsOf(provider).logFolders)
            search.scanRoot(provider, home + '/' + std::string(folder));
    }
    for (const UsageProvider provider : allProviders) {
        const QString &moved = host.movedHomes[static_cast<std::size_t>(provider)];
        if (!moved.isEmpty())
            search.scanRoot(provider,
                            QFile::encodeName(moved).toStdString() + '/'
                                + factsOf(provider).movedLogFolder);
    }

    std::string path = home + '/' + ownFolder + '/' + statuslineFile;
    struct stat status{};
    if (stat(path.c_str(), &status) == 0)
        search.takeFile(UsageProvider::Claude, std::move(path), status);
    return search.takeFiles();
}

} // namespace tallyglass
