#include "services/Audit.h"

#include "collect/LogCheck.h"
#include "model/WindowInterval.h"
#include "services/CollectUses.h"

#include <algorithm>
#include <iterator>
#include <tuple>

namespace tallyglass {

namespace {

DifferenceCause causeOf(const MarkedUse &use, Verdict verdict)
{
    switch (verdict) {
    case Verdict::Block:
        return DifferenceCause::Block;
    case Verdict::Resumed:
        return DifferenceCause::Resumed;
    case Verdict::InnerCopy:
        return DifferenceCause::InnerCopy;
    case Verdict::Repeat:
        return DifferenceCause::Repeat;
    case Verdict::Replay:
        return DifferenceCause::Replay;
    case Verdict::RunningTotal:
        return DifferenceCause::RunningTotal;
    case Verdict::Counts:
    case Verdict::Count:
        break;
    }
    return use.mark.isRecord ? DifferenceCause::Parts : DifferenceCause::EarlierRun;
}

/// Adds up one window.
class WindowAudit
{
public:
    WindowAudit(UsageWindowKind window, Instant now, const QTimeZone &zone)
        : m_window(window)
        , m_span(interval(window, now, zone))
    {
    }

    void add(const MarkedUse &use, Verdict verdict)
    {
        if (!m_span.contains(use.date))
            return;
        Sums &sums = m_sums[static_cast<std::size_t>(use.provider)];
        const TokenUsage every =
            countedUsage(use, verdict, Counting::EveryRecord).value_or(TokenUsage{});
        const TokenUsage once =
            countedUsage(use, verdict, Counting::EachAnswerOnce).value_or(TokenUsage{});
        sums.every = sums.every + every;
        sums.once = sums.once + once;
        if (const std::int64_t tokens = every.totalTokens() - once.totalTokens(); tokens != 0) {
            Difference &difference = of(sums, causeOf(use, verdict));
            difference.tokens = checkedSum(difference.tokens, tokens);
            ++difference.records;
        }
    }

    std::vector<AuditedUsage> usages()
    {
        std::vector<AuditedUsage> usages;
        for (const UsageProvider provider : allProviders) {
            Sums &sums = m_sums[static_cast<std::size_t>(provider)];
            AuditedUsage usage{.window = m_window,
                               .provider = provider,
                               .everyRecord = sums.every.totalTokens(),
                               .eachAnswerOnce = sums.once.totalTokens()};
            std::int64_t rest = usage.everyRecord - usage.eachAnswerOnce;
            for (const Difference &difference : sums.differences)
                rest -= difference.tokens;
            of(sums, DifferenceCause::StatedTotal).tokens = rest;
            usage.differences = sums.differences;
            usages.push_back(usage);
        }
        return usages;
    }

private:
    struct Sums
    {
        TokenUsage every;
        TokenUsage once;
        decltype(AuditedUsage::differences) differences;
    };

    static Difference &of(Sums &sums, DifferenceCause cause)
    {
        return sums.differences[static_cast<std::size_t>(cause)];
    }

    UsageWindowKind m_window;
    WindowInterval m_span;
    std::array<Sums, allProviders.size()> m_sums;
};

} // namespace

Audit audit(const Host &host, Instant now, const QTimeZone &zone, CollectionProgress &progress)
{
    Audit result;
    const Instant cutoff = collectionCutoff(now, zone);
    const auto logs = findLogFiles(host, cutoff, &result.passedOver);
    for (const LogFile &file : logs)
        progress.bytesFound += file.size;

    const WorkerSinks nobody{[](const FileEvents &) { }, [](const FileEvents &) { }};
    const auto files = collectUses(host, cutoff, zone, nobody, progress);
    const auto verdicts = judge(files);
    for (const UsageWindowKind window : allWindowKinds) {
        WindowAudit windowAudit(window, now, zone);
        for (std::size_t file = 0; file < files.size(); ++file) {
            for (std::size_t i = 0; i < files[file].uses.size(); ++i)
                windowAudit.add(files[file].uses[i], verdicts[file][i]);
        }
        std::ranges::move(windowAudit.usages(), std::back_inserter(result.usages));
    }

    for (const LogFile &file : logs) {
        std::ranges::move(checkLogFile(file), std::back_inserter(result.passedOver));
        progress.bytesRead += file.size;
    }
    std::ranges::sort(result.passedOver, {},
                      [](const PassedOverLog &log) { return std::tie(log.path, log.lines); });
    return result;
}

} // namespace tallyglass
