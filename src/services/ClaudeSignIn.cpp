#include "services/ClaudeSignIn.h"

#include "store/JsonFile.h"

#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto longestFileReading = 10s;
constexpr auto longestQuestion = 10s; // for which a refresh waits; the user may take longer

} // namespace

ClaudeSignIn::ClaudeSignIn(const QString &homeFolder, std::shared_ptr<const Keychain> keychain,
                           Workers &workers)
    : m_filePath(homeFolder + QStringLiteral("/.claude/.credentials.json"))
    , m_keychain(std::move(keychain))
    , m_fileReading(workers)
    , m_keychainReading(workers)
{
}

QCoro::Task<std::optional<ClaudeCredentials>> ClaudeSignIn::find(Instant now)
{
    const auto file = co_await m_fileReading.run(
        longestFileReading, [path = m_filePath] { return readJsonFile(path); });
    const bool hasFileChanged = file && *file != m_file;
    if (hasFileChanged)
        m_file = *file;
    else if (isHeld(now))
        co_return std::as_const(m_found);

    const auto item = co_await m_keychainReading.run(longestQuestion, [keychain = m_keychain] {
        return keychain ? keychain->genericPassword(QStringLiteral("Claude Code-credentials"))
                        : std::nullopt;
    });
    m_found.reset();
    if (item && *item)
        m_found = credentialsFrom(QJsonDocument::fromJson(**item), now);
    if (!m_found && m_file)
        m_found = credentialsFrom(*m_file, now);
    m_isHeld = item.has_value(); // else the keychain's answer is still to come
    co_return std::as_const(m_found);
}

void ClaudeSignIn::reject()
{
    if (!m_found || m_found->accessToken == m_rejectedToken)
        return;
    m_rejectedToken = m_found->accessToken;
    forget();
}

bool ClaudeSignIn::isHeld(Instant now) const
{
    return m_isHeld && m_found && m_found->accessToken
        && (!m_found->expiryDate || *m_found->expiryDate > now);
}

} // namespace tallyglass
