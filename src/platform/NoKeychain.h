#pragma once

#include "platform/Keychain.h"

namespace tallyglass {

/// Has no items.
class NoKeychain final : public Keychain
{
public:
    std::optional<QByteArray> genericPassword(const QString & /*service*/) const override
    {
        return std::nullopt;
    }
};

} // namespace tallyglass
