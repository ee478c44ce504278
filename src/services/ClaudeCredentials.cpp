#include "services/ClaudeCredentials.h"

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

} // namespace

std::optional<ClaudeCredentials> credentialsFrom(const QJsonDocument &record, Instant now)
{
    QJsonObject members = record.object();
    if (const QJsonValue inner = members.value(QLatin1String("claudeAiOauth")); inner.isObject())
        members = inner.toObject();
    const QString token = members.value(QLatin1String("accessToken")).toString();
    if (token.isEmpty())
        return std::nullopt;

    ClaudeCredentials credentials;
    const auto expiresAt = numberFrom(members.value(QLatin1String("expiresAt")));
    if (expiresAt)
        credentials.expiryDate = fromUnixNumber(*expiresAt);
    credentials.isExpired = credentials.expiryDate && *credentials.expiryDate <= now;
    if (!credentials.isExpired)
        credentials.accessToken = token.toUtf8();
    return credentials;
}

} // namespace tallyglass
