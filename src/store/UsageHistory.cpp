#include "store/UsageHistory.h"

#include "model/UsageJson.h"
#include "platform/Files.h"
#include "store/JsonFile.h"

#include <algorithm>
#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

const auto fileName = QStringLiteral("usage_history.json");
constexpr auto leastDistance = 600s;
constexpr auto retention = 30 * 24h;

struct StoredHistory
{
    std::vector<UsageHistorySample> samples;
    bool mayBeIncomplete = false; ///< a file that goes before the one read could not be read
};

StoredHistory readHistory(const StorageLocations &locations)
{
    StoredHistory history;
    for (const QString &path : locations.readingPaths(fileName)) {
        const OwnFile file = readOwnFile(path);
        if (file.state == OwnFileState::Unreadable)
            history.mayBeIncomplete = true;
        auto samples =
            file.document.isArray() ? historyFromJson(file.document.array()) : std::nullopt;
        if (samples) {
            std::ranges::sort(*samples, {}, [](const UsageHistorySample &sample) {
                return std::pair(sample.date, sample.provider);
            });
            history.samples = std::move(*samples);
            break;
        }
    }
    return history;
}

} // namespace

std::vector<UsageHistorySample> loadHistory(const StorageLocations &locations)
{
    return readHistory(locations).samples;
}

std::vector<UsageHistorySample> recordHistory(const UsageSnapshot &snapshot, Instant now,
                                              const QTimeZone &zone,
                                              const StorageLocations &locations)
{
    auto [samples, mayBeIncomplete] = readHistory(locations);
    if (!samples.empty() && now - samples.back().date < leastDistance)
        return samples;

    const auto fiveHours = snapshot.summary(UsageWindowKind::FiveHours, now, zone);
    const auto week = snapshot.summary(UsageWindowKind::Week, now, zone);
    for (const UsageProvider provider : allProviders) {
        const ProviderUsageSummary inFiveHours = fiveHours.summary(provider);
        const ProviderUsageSummary inWeek = week.summary(provider);
        if (!inFiveHours.hasActivity() && !inWeek.hasActivity())
            continue;
        samples.push_back({.id = QUuid::createUuid(),
                           .date = now,
                           .provider = provider,
                           .fiveHourPercent = std::clamp(inFiveHours.percent(), 0.0, 1.0),
                           .weekPercent = std::clamp(inWeek.percent(), 0.0, 1.0),
                           .totalTokens = inFiveHours.tokens.totalTokens()});
    }
    std::erase_if(samples,
                  [&](const UsageHistorySample &sample) { return sample.date < now - retention; });

    if (mayBeIncomplete)
        return samples;
    const QByteArray content = QJsonDocument(toJson(samples)).toJson(QJsonDocument::Compact);
    for (const QString &path : locations.writingPaths(fileName))
        writeFileAtomically(path, content);
    return samples;
}

} // namespace tallyglass
