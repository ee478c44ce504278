#pragma once

#include "model/Instant.h"
#include "platform/Ports.h"

#include <QByteArray>

#include <optional>

namespace tallyglass {

/// The sign-in that Claude Code keeps; it is only ever read.
struct ClaudeCredentials
{
    std::optional<QByteArray> accessToken; ///< absent once it has expired
    std::optional<Instant> expiryDate;
    bool isExpired = false;

    bool operator==(const ClaudeCredentials &) const = default;
};

/// Looks in the keychain if there is one, and where that has no token, in
/// ".claude/.credentials.json". A token in the keychain that has expired is final. May wait for the
/// user's consent: never on the main thread.
std::optional<ClaudeCredentials> findClaudeCredentials(const Host &host, const Keychain *keychain,
                                                       Instant now);

} // namespace tallyglass
