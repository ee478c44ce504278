#pragma once

#include "model/RateLimitUsage.h"
#include "model/Throttle.h"
#include "services/ClaudeSignIn.h"
#include "services/ClaudeUsageAPIStatus.h"

#include <QCoroTask>

#include <optional>
#include <vector>

namespace tallyglass {

/// Asks the Claude usage endpoint for its limits, with the token that Claude Code keeps, at most
/// once a minute.
///
/// No error leaves this class: the outcome of the last request is status(), and the limits of the
/// last good answer stay in force. It must outlive the calls that wait in it.
class ClaudeUsageAPI
{
public:
    ClaudeUsageAPI(const Host &host, Clock &clock, HttpClient &http,
                   std::shared_ptr<const Keychain> keychain, Workers &workers);

    QCoro::Task<std::vector<RateLimitUsage>> fetchLimits();
    const ClaudeUsageAPIStatus &status() const { return m_status; }
    ClaudeSignIn &signIn() { return m_signIn; }

private:
    void take(const HttpReply &reply, Instant now);

    const Host &m_host;
    Clock &m_clock;
    HttpClient &m_http;
    ClaudeSignIn m_signIn;

    ClaudeUsageAPIStatus m_status;
    std::vector<RateLimitUsage> m_cachedLimits;
    Throttle m_throttle;
};

/// The limits in an answer of the endpoint; nothing when it is no JSON object.
std::optional<std::vector<RateLimitUsage>> limitsFromAnswer(const QByteArray &body);

} // namespace tallyglass
