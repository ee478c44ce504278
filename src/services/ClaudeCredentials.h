#pragma once

#include "model/Instant.h"

#include <QByteArray>

#include <optional>

class QJsonDocument;

namespace tallyglass {

/// The sign-in that Claude Code keeps; it is only ever read.
struct ClaudeCredentials
{
    std::optional<QByteArray> accessToken; ///< absent once it has expired
    std::optional<Instant> expiryDate;
    bool isExpired = false;

    bool operator==(const ClaudeCredentials &) const = default;
};

/// The sign-in in a record of the keychain or of the credentials file; nothing when it holds no
/// token.
std::optional<ClaudeCredentials> credentialsFrom(const QJsonDocument &record, Instant now);

} // namespace tallyglass
