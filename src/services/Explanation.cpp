#include "services/Explanation.h"

#include "model/WindowInterval.h"
#include "services/CollectUses.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace tallyglass {

namespace {

using PerProvider = std::array<std::vector<LimitReading>, allProviders.size()>;

/// Takes the limits of a file's events that fit the window.
void takeLimits(const FileEvents &file, UsageWindowKind window, const WindowInterval &span,
                PerProvider &limits)
{
    for (std::size_t i = 0; i < file.events.size(); ++i) {
        const UsageEvent &event = file.events[i];
        for (const RateLimitUsage &limit : event.rateLimits) {
            const bool fits =
                !limit.windowMinutes || limit.windowMinutes == factsOf(window).limitMinutes;
            auto &ofProvider = limits[static_cast<std::size_t>(event.provider)];
            if (fits && span.contains(event.date))
                ofProvider.push_back({.path = file.file.path,
                                      .line = file.marks->events[i].line,
                                      .fileOrder = file.order,
                                      .indexInFile = ofProvider.size(),
                                      .date = event.date,
                                      .limit = limit});
        }
    }
}

/// The order in which limits are preferred: of the window's length, known, newest, read last.
bool isPreferred(const LimitReading &a, const LimitReading &b)
{
    const auto rank = [](const LimitReading &reading) {
        return std::tuple(reading.limit.windowMinutes.has_value(), reading.limit.isPercentKnown(),
                          reading.date, reading.fileOrder, reading.indexInFile);
    };
    return rank(a) > rank(b);
}

} // namespace

std::vector<Explanation> explain(const Host &host, UsageWindowKind window, Instant now,
                                 const QTimeZone &zone, Counting counting,
                                 CollectionProgress &progress)
{
    const WindowInterval span = interval(window, now, zone);
    std::array<PerProvider, collectionWorkers> limits;
    WorkerSinks sinks;
    for (std::size_t worker = 0; worker < sinks.size(); ++worker) {
        sinks[worker] = [&, worker](const FileEvents &file) {
            takeLimits(file, window, span, limits[worker]);
        };
    }
    const auto files = collectUses(host, collectionCutoff(now, zone), zone, sinks, progress);
    const auto verdicts = judge(files);

    std::vector<Explanation> explanations;
    for (const UsageProvider provider : allProviders) {
        Explanation &explanation = explanations.emplace_back();
        explanation.provider = provider;
        for (auto &ofWorker : limits)
            std::ranges::move(ofWorker[static_cast<std::size_t>(provider)],
                              std::back_inserter(explanation.limits));
        std::ranges::sort(explanation.limits, isPreferred);
    }
    for (std::size_t file = 0; file < files.size(); ++file) {
        for (std::size_t i = 0; i < files[file].uses.size(); ++i) {
            const MarkedUse &use = files[file].uses[i];
            const auto tokens = countedUsage(use, verdicts[file][i], counting);
            if (!tokens || !span.contains(use.date))
                continue;
            explanations[static_cast<std::size_t>(use.provider)].contributions.push_back(
                {.path = files[file].path,
                 .line = use.mark.line,
                 .date = use.date,
                 .model = use.model,
                 .tokens = *tokens});
        }
    }
    for (Explanation &explanation : explanations) {
        std::ranges::sort(explanation.contributions, {}, [](const Contribution &one) {
            return std::tuple(-one.tokens.totalTokens(), one.date, one.path, one.line);
        });
        for (const Contribution &one : explanation.contributions)
            explanation.sum = explanation.sum + one.tokens;
    }
    return explanations;
}

} // namespace tallyglass
