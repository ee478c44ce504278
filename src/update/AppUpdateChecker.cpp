#include "update/AppUpdateChecker.h"

#include "update/ReleaseNotesText.h"
#include "update/SparkleAppcastParser.h"
#include "update/VersionOrder.h"
#include "update/WebAddress.h"

#include <QCoroFuture>
#include <QtConcurrentRun>

#include <algorithm>

namespace tallyglass {

namespace {

using Item = SparkleAppcastParser::Item;

/// The first of the newest. \a items must not be empty.
const Item &newestOf(const std::vector<Item> &items)
{
    return *std::ranges::max_element(items, [](const Item &left, const Item &right) {
        return compareVersions(left.versionText(), right.versionText()) < 0;
    });
}

bool isNewer(const Item &item, const Host &running)
{
    if (item.buildVersion && !running.buildVersion.isEmpty())
        return compareVersions(*item.buildVersion, running.buildVersion) > 0;
    return compareVersions(item.versionText(), running.shortVersion) > 0;
}

std::optional<QString> releaseNotesOf(const Item &item)
{
    const QString text = releaseNotesText(item.releaseNotesHTML.value_or(QString()));
    return text.isEmpty() ? std::nullopt : std::optional{text};
}

/// What a feed says of the running version; \a previous when it says nothing of any version.
std::optional<AppUpdateInfo> answerOf(const QByteArray &feed, const Host &running,
                                      std::optional<AppUpdateInfo> previous)
{
    const auto items = SparkleAppcastParser::parse(feed);
    if (!items || items->empty())
        return previous;
    const Item &newest = newestOf(*items);
    if (!isNewer(newest, running))
        return std::nullopt;
    return AppUpdateInfo{
        .version = newest.versionText(),
        .build = newest.buildVersion,
        .appcastURL = newest.downloadURL.value_or(QUrl(running.feedUrl)),
        .releaseNotes = releaseNotesOf(newest),
        .releaseNotesURL = newest.releaseNotesLink,
    };
}

} // namespace

AppUpdateChecker::AppUpdateChecker(Clock &clock, HttpClient &http, const Host &host)
    : m_clock(clock)
    , m_http(http)
    , m_host(host)
{
}

/// A pause that lies further ahead than one interval comes from a clock that was set back since.
bool AppUpdateChecker::isThrottled(Instant now) const
{
    return now < m_throttleUntil && m_throttleUntil - now <= checkInterval;
}

/// A copy of its own: co_return of a member would move the member away, as QCoro's promise takes
/// any lvalue that is not const for a value to move from.
std::optional<AppUpdateInfo> AppUpdateChecker::cached() const
{
    return m_cached;
}

QCoro::Task<std::optional<AppUpdateInfo>> AppUpdateChecker::checkForUpdate()
{
    constexpr int success = 200;

    const Instant now = m_clock.now();
    if (isThrottled(now))
        co_return cached();
    // Set before the first wait, so that a second caller meanwhile is answered from the cache, and
    // a feed that fails is left alone as long as any other.
    m_throttleUntil = now + checkInterval;

    const auto feedUrl = webAddress(m_host.feedUrl);
    if (!feedUrl)
        co_return cached();
    HttpRequest request{.url = *feedUrl, .followsRedirects = true};
    const HttpReply reply = co_await m_http.get(std::move(request));
    // On a worker: the largest feed takes some tenths of a second.
    if (reply.status == success)
        m_cached = co_await QtConcurrent::run(answerOf, reply.body, m_host, m_cached);
    co_return cached();
}

} // namespace tallyglass
