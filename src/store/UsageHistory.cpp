#include "store/UsageHistory.h"

#include "model/UsageJson.h"
#include "store/JsonFile.h"

#include <algorithm>
#include <utility>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

const auto fileName = QStringLiteral("usage_history.json");
constexpr auto leastDistance = 600s;
constexpr auto retention = 30 * 24h;

} // namespace

std::vector<UsageHistorySample> loadHistory(const StorageLocations &locations)
{
    for (const QString &path : locations.readingPaths(fileName)) {
        const auto document = readJsonFile(path);
        if (!document || !document->isArray())
            continue;
        if (auto samples = historyFromJson(document->array())) {
            std::ranges::sort(*samples, {}, [](const UsageHistorySample &sample) {
                return std::pair(sample.date, sample.provider);
            });
            return std::move(*samples);
        }
    }
    return {};
}

std::vector<UsageHistorySample> recordHistory(const UsageSnapshot &snapshot, Instant now,
                                              const QTimeZone &zone,
                                              const StorageLocations &locations)
{
    std::vector<UsageHistorySample> samples = loadHistory(locations);
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

    const QByteArray content = QJsonDocument(toJson(samples)).toJson(QJsonDocument::Compact);
    for (const QString &path : locations.writingPaths(fileName))
        writeFileAtomically(path, content);
    return samples;
}

} // namespace tallyglass
