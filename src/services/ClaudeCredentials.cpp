#include "services/ClaudeCredentials.h"

#include "store/JsonFile.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace tallyglass {

namespace {

/// A number, or a text that reads as one; finite.
std::optional<double> numberFrom(const QJsonValue &value)
{
    bool ok = value.isDouble();
    const double number = ok ? value.toDouble() : value.toString().toDouble(&ok);
    return ok && std::isfinite(number) ? std::optional{number} : std::nullopt;
}

/// Nothing when the document holds no token.
std::optional<ClaudeCredentials> credentials(const QJsonDocument &document, Instant now)
{
    QJsonObject record = document.object();
    if (const QJsonValue inner = record.value(QLatin1String("claudeAiOauth")); inner.isObject())
        record = inner.toObject();
    const QString token = record.value(QLatin1String("accessToken")).toString();
    if (token.isEmpty())
        return std::nullopt;

    ClaudeCredentials credentials;
    const auto expiresAt = numberFrom(record.value(QLatin1String("expiresAt")));
    if (expiresAt)
        credentials.expiryDate = fromUnixNumber(*expiresAt);
    credentials.isExpired = credentials.expiryDate && *credentials.expiryDate <= now;
    if (!credentials.isExpired)
        credentials.accessToken = token.toUtf8();
    return credentials;
}

} // namespace

std::optional<ClaudeCredentials> findClaudeCredentials(const Host &host, const Keychain *keychain,
                                                       Instant now)
{
    const auto item = keychain
        ? keychain->genericPassword(QStringLiteral("Claude Code-credentials"))
        : std::nullopt;
    if (const auto found = item ? credentials(QJsonDocument::fromJson(*item), now) : std::nullopt)
        return found;
    const auto file = readJsonFile(host.homeFolder + QStringLiteral("/.claude/.credentials.json"));
    return file ? credentials(*file, now) : std::nullopt;
}

} // namespace tallyglass
