#pragma once

#include <QByteArray>
#include <QCoroTask>
#include <QHash>
#include <QUrl>

#include <chrono>
#include <optional>

namespace tallyglass {

struct HttpRequest
{
    QUrl url;
    QHash<QByteArray, QByteArray> headers;
    /// False for whatever carries a secret: it must not travel to where an answer points.
    bool followsRedirects = false;
    std::chrono::milliseconds timeout{15'000}; ///< for the whole exchange, the body included

    bool operator==(const HttpRequest &) const = default;
};

struct HttpReply
{
    std::optional<int> status; ///< absent: no HTTP answer at all
    QByteArray body; ///< empty when it exceeds largestHttpBody

    bool operator==(const HttpReply &) const = default;
};

/// Answers asked for here are a few kilobytes; no server may fill the memory.
inline constexpr qint64 largestHttpBody = qint64{1024} * 1024; // bytes

class HttpClient
{
public:
    virtual ~HttpClient();

    /// Asks by GET. Never fails: a transport error is a reply without a status.
    virtual QCoro::Task<HttpReply> get(HttpRequest request) = 0;
};

} // namespace tallyglass
