#pragma once

#include "platform/Errand.h"
#include "platform/Ports.h"
#include "services/ClaudeCredentials.h"

#include <QJsonDocument>

#include <memory>

namespace tallyglass {

/// Looks for the sign-in that Claude Code keeps, and holds on to one that is good until it
/// expires: each look into the keychain may be a question to the user.
class ClaudeSignIn
{
public:
    /// \a keychain is null where the system has none.
    ClaudeSignIn(const QString &homeFolder, std::shared_ptr<const Keychain> keychain,
                 Workers &workers);

    /// Looks in the keychain if there is one, and where that has no token, in
    /// ".claude/.credentials.json". A token in the keychain that has expired is final. The file is
    /// read each time, and a change in it is a reason to look into the keychain again.
    ///
    /// Goes on without the keychain when that has not answered after ten seconds.
    QCoro::Task<std::optional<ClaudeCredentials>> find(Instant now);

    /// What was found last.
    const std::optional<ClaudeCredentials> &found() const { return m_found; }
    /// There may be a new token: the next look goes to the keychain.
    void forget() { m_isHeld = false; }
    /// The token that was found was turned down. Once for each, a new one is looked for.
    void reject();

private:
    bool isHeld(Instant now) const;

    QString m_filePath;
    std::shared_ptr<const Keychain> m_keychain;
    Errand<std::optional<QJsonDocument>> m_fileReading;
    Errand<std::optional<QByteArray>> m_keychainReading;

    std::optional<QJsonDocument> m_file; ///< as it was read last
    std::optional<ClaudeCredentials> m_found;
    bool m_isHeld = false;
    std::optional<QByteArray> m_rejectedToken;
};

} // namespace tallyglass
