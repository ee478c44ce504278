#pragma once

#include "platform/Keychain.h"

#include <mutex>

namespace tallyglass {

/// The user's keychain. An item of another program is given out only after the system has asked the
/// user. Whoever refuses is not asked again before the next start, or every refresh would ask.
class MacKeychain final : public Keychain
{
public:
    std::optional<QByteArray> genericPassword(const QString &service) const override;

private:
    mutable std::mutex m_mutex; ///< one question at a time
    mutable bool m_isRefused = false;
};

} // namespace tallyglass
