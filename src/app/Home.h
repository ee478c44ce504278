#pragma once

#include "app/DemoHome.h"
#include "model/Instant.h"
#include "platform/Host.h"

#include <QDir>

#include <optional>
#include <pwd.h>
#include <unistd.h>

namespace tallyglass {

inline Instant currentInstant()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

/// The user's home folder: as the environment names it, else as the system's list of users does.
/// The environment has it afterwards, for the programs that we start.
inline QString userHome()
{
    if (qEnvironmentVariableIsEmpty("HOME")) {
        if (const passwd *user = getpwuid(getuid()))
            qputenv("HOME", user->pw_dir);
    }
    return QDir::homePath();
}

/// The home folder that the program works on: the user's, or a made-up one.
class Home
{
public:
    explicit Home(bool isDemo)
    {
        if (isDemo)
            m_demo.emplace(currentInstant());
    }

    QString path() const { return m_demo ? m_demo->path() : userHome(); }

    /// Where the environment tells each tool to keep its data.
    decltype(Host::movedHomes) movedHomes() const
    {
        decltype(Host::movedHomes) moved;
        for (std::size_t i = 0; i < moved.size() && !m_demo; ++i) {
            const QString path = qEnvironmentVariable(factsOf(allProviders[i]).homeVariable);
            // A relative one depends on the folder in which a tool is started.
            if (QDir::isAbsolutePath(path))
                moved[i] = QDir::cleanPath(path);
        }
        return moved;
    }

private:
    std::optional<DemoHome> m_demo;
};

} // namespace tallyglass
