#pragma once

#include "platform/HttpClient.h"
#include "platform/Wakeup.h"

#include <QNetworkAccessManager>
#include <QSet>

namespace tallyglass {

/// HTTP over Qt Network: certificates are verified; nothing is kept between two requests but an
/// open connection; a challenge for a name and password is an answer like any other.
class QtHttpClient final : public HttpClient
{
public:
    QtHttpClient() = default;
    QtHttpClient(const QtHttpClient &) = delete;
    QtHttpClient &operator=(const QtHttpClient &) = delete;
    /// Those who wait for an answer go on without, inside this call.
    ~QtHttpClient() override;

    /// An answer that comes too late counts as none, and so does one that breaks off, except
    /// between the chunks of a body without a stated length: Qt does not tell about those.
    QCoro::Task<HttpReply> get(HttpRequest request) override;

private:
    QNetworkAccessManager m_manager;
    QSet<Wakeup *> m_waiting;
};

} // namespace tallyglass
