#pragma once

#include "model/Instant.h"

#include <QString>

#include <variant>

class QTimeZone;

namespace tallyglass {

namespace apistatus {

struct NotAttempted
{
    bool operator==(const NotAttempted &) const = default;
};
struct Ok
{
    Instant at;
    bool operator==(const Ok &) const = default;
};
/// An answer other than 200.
struct Http
{
    int code = 0;
    bool operator==(const Http &) const = default;
};
/// No credentials, or none with a token.
struct NoToken
{
    bool operator==(const NoToken &) const = default;
};
struct TokenExpired
{
    bool operator==(const TokenExpired &) const = default;
};
/// No HTTP answer at all.
struct NetworkError
{
    bool operator==(const NetworkError &) const = default;
};
/// A good answer that could not be read.
struct ParseFailed
{
    bool operator==(const ParseFailed &) const = default;
};

} // namespace apistatus

/// The outcome of the last call of the Claude usage endpoint.
using ClaudeUsageAPIStatus =
    std::variant<apistatus::NotAttempted, apistatus::Ok, apistatus::Http, apistatus::NoToken,
                 apistatus::TokenExpired, apistatus::NetworkError, apistatus::ParseFailed>;

/// The whole line for people: "Claude使用量API: …".
QString statusText(const ClaudeUsageAPIStatus &status, const QTimeZone &zone);

} // namespace tallyglass
