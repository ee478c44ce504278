#pragma once

#include "model/Instant.h"

namespace tallyglass {

/// Keeps requests apart. A pause lasts until its end or until the clock is set back before its
/// beginning.
class Throttle
{
public:
    void pause(Instant now, std::chrono::seconds length)
    {
        m_from = now;
        m_until = now + length;
    }
    bool isPausing(Instant now) const { return m_from <= now && now < m_until; }

private:
    Instant m_from;
    Instant m_until; ///< not behind the beginning: no pause
};

} // namespace tallyglass
