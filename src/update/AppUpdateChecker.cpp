#include "update/AppUpdateChecker.h"

#include "update/ReleaseNotesText.h"
#include "update/SparkleAppcastParser.h"
#include "update/VersionOrder.h"
#include "update/WebAddress.h"

#include <algorithm>
#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto longestReading = 30s;

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

AppUpdateChecker::AppUpdateChecker(Clock &clock, HttpClient &http, const Host &host,
                                   Workers &workers)
    : m_clock(clock)
    , m_http(http)
    , m_host(host)
    , m_reading(workers)
{
}

QCoro::Task<std::optional<AppUpdateInfo>> AppUpdateChecker::checkForUpdate()
{
    constexpr int success = 200;

    const auto feedUrl = webAddress(m_host.feedUrl);
    if (feedUrl && !m_throttle.isPausing(m_clock.now())) {
        // Before the first wait, so that a second caller meanwhile is answered from the cache, and
        // a feed that fails is left alone as long as any other.
        m_throttle.pause(m_clock.now(), checkInterval);
        HttpRequest request{.url = *feedUrl, .followsRedirects = true};
        const HttpReply reply = co_await m_http.get(std::move(request));
        if (reply.status == success)
            co_await read(reply.body);
    }
    // QCoro would move from a member that is not const.
    co_return std::as_const(m_cached);
}

/// On a worker: the largest feed takes some tenths of a second.
QCoro::Task<> AppUpdateChecker::read(QByteArray feed)
{
    auto answer =
        co_await m_reading.run(longestReading, [feed, running = m_host, previous = m_cached] {
            return answerOf(feed, running, previous);
        });
    if (answer)
        m_cached = std::move(*answer);
}

} // namespace tallyglass
