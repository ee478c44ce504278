#pragma once

#include "app/DemoHome.h"
#include "model/Instant.h"
#include "platform/Host.h"

#include <QDir>

#include <optional>

namespace tallyglass {

inline Instant currentInstant()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
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

    QString path() const { return m_demo ? m_demo->path() : QDir::homePath(); }

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
