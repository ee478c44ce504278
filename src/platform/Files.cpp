#include "platform/Files.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallyglass {

namespace {

/// Extensions of folders that macOS shows as one thing, or that are programs.
constexpr std::array<QLatin1String, 17> packageExtensions{
    QLatin1String("app"),           QLatin1String("bundle"),    QLatin1String("framework"),
    QLatin1String("plugin"),        QLatin1String("appex"),     QLatin1String("xpc"),
    QLatin1String("kext"),          QLatin1String("prefpane"),  QLatin1String("qlgenerator"),
    QLatin1String("mdimporter"),    QLatin1String("pkg"),       QLatin1String("mpkg"),
    QLatin1String("photoslibrary"), QLatin1String("rtfd"),      QLatin1String("xcodeproj"),
    QLatin1String("xcworkspace"),   QLatin1String("playground")};

/// A new file for what will replace \a target. Always the same name: after any number of kills
/// before the renaming one file is left at most. A folder of that name, which cannot be taken away,
/// is stepped around.
int openUnfinished(const QByteArray &target, QByteArray &name)
{
    int file = -1;
    for (const char *ending : {".unfinished", ".unfinished-2"}) {
        name = target + ending;
        std::remove(name.constData());
        file = open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (file >= 0)
            break;
    }
    return file;
}

bool writeWhole(int file, const QByteArray &content)
{
    qsizetype written = 0;
    while (written < content.size()) {
        const auto count = write(file, content.constData() + written,
                                 static_cast<std::size_t>(content.size() - written));
        if (count < 0 && errno != EINTR)
            return false;
        written += std::max<qsizetype>(count, 0);
    }
    return fsync(file) == 0;
}

} // namespace

std::optional<QByteArray> readWholeFile(const QString &path, qint64 largest, Links links)
{
    // Waiting would be for somebody who opens the other end of a pipe.
    const int flags =
        O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY | (links == Links::Refused ? O_NOFOLLOW : 0);
    const int descriptor = open(QFile::encodeName(path).constData(), flags);
    QFile file;
    struct stat status{};
    if (descriptor < 0 || !file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)
        || fstat(descriptor, &status) != 0)
        return std::nullopt;
    if (!S_ISREG(status.st_mode) || status.st_size > largest) {
        errno = S_ISREG(status.st_mode) ? EFBIG : EINVAL;
        return std::nullopt;
    }
    QByteArray content = file.read(largest);
    if (file.error() == QFileDevice::NoError)
        return content;
    errno = EIO;
    return std::nullopt;
}

bool writeFileAtomically(const QString &path, const QByteArray &content)
{
    if (!makePrivateFolder(QFileInfo(path).path()))
        return false;
    const QByteArray target = QFile::encodeName(path);
    QByteArray unfinished;
    const int file = openUnfinished(target, unfinished);
    if (file < 0)
        return false;
    const bool isDone =
        writeWhole(file, content) && std::rename(unfinished.constData(), target.constData()) == 0;
    const int reason = errno;
    close(file);
    if (!isDone)
        std::remove(unfinished.constData());
    errno = reason;
    return isDone;
}

bool makePrivateFolder(const QString &path)
{
    if (QFileInfo(path).isDir())
        return true;
    const QString parent = QFileInfo(path).path();
    return parent != path && makePrivateFolder(parent)
        && mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0;
}

bool hasPackageExtension(const std::string &path)
{
    const std::string name = path.substr(path.rfind('/') + 1);
    const std::size_t stop = name.rfind('.');
    if (stop == std::string::npos || stop == 0)
        return false; // A name that only begins with a full stop has no extension.
    const QLatin1String extension(name.data() + stop + 1);
    return std::ranges::any_of(packageExtensions, [extension](QLatin1String known) {
        return known.compare(extension, Qt::CaseInsensitive) == 0;
    });
}

} // namespace tallyglass
