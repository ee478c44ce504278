#pragma once

#include "app/DemoHome.h"
#include "model/Instant.h"

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

private:
    std::optional<DemoHome> m_demo;
};

} // namespace tallyglass
