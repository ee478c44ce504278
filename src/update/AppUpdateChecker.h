#pragma once

#include "model/Throttle.h"
#include "platform/Clock.h"
#include "platform/Errand.h"
#include "platform/Host.h"
#include "platform/HttpClient.h"
#include "update/AppUpdateInfo.h"

#include <QCoroTask>

#include <optional>

namespace tallyglass {

/// Asks the update feed for a newer version, at most every six hours.
///
/// No error leaves this class: whatever goes wrong, the previous answer stays. It must outlive the
/// calls that wait in it, as must what it is made from.
class AppUpdateChecker
{
public:
    static constexpr std::chrono::seconds checkInterval{21'600};

    AppUpdateChecker(Clock &clock, HttpClient &http, const Host &host, Workers &workers);

    /// What is newer than the running version; nothing when that is the newest, or before the feed
    /// has once been read.
    QCoro::Task<std::optional<AppUpdateInfo>> checkForUpdate();

private:
    QCoro::Task<> read(QByteArray feed);

    Clock &m_clock;
    HttpClient &m_http;
    const Host &m_host;
    Errand<std::optional<AppUpdateInfo>> m_reading;

    std::optional<AppUpdateInfo> m_cached;
    Throttle m_throttle;
};

} // namespace tallyglass
