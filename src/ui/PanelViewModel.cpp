#include "ui/PanelViewModel.h"

#include "model/DisplayTexts.h"
#include "model/Formatting.h"
#include "platform/Clock.h"
#include "services/Settings.h"
#include "services/UsageModel.h"
#include "update/AppUpdater.h"

#include <QDesktopServices>

#include <algorithm>

namespace tallyglass {

namespace {

const QString dayRange = QStringLiteral("day");
const QString weekRange = QStringLiteral("week");

UsageWindowKind selectedWindow(const UserDefaults &defaults)
{
    return windowKindFromRawValue(stored(defaults, settings::selectedWindow))
        .value_or(UsageWindowKind::FiveHours);
}

HistoryRange historyRange(const UserDefaults &defaults)
{
    return stored(defaults, settings::historyRange) == dayRange ? HistoryRange::Day
                                                                : HistoryRange::Week;
}

/// The first reset date of the window's limits, as a countdown.
QString resetCountdown(const WindowUsageSummary &window, Instant now)
{
    for (const ProviderUsageSummary &provider : window.providers) {
        if (provider.rateLimit && provider.rateLimit->resetDate)
            return formatResetCountdown(*provider.rateLimit->resetDate, now);
    }
    return displayText("common.noData");
}

QStringList missingCLIs(const std::vector<CLIInstallStatus> &statuses)
{
    QStringList names;
    for (const CLIInstallStatus &status : statuses) {
        if (!status.detectedPath)
            names += displayName(status.provider);
    }
    return names;
}

} // namespace

PanelViewModel::PanelViewModel(UsageModel &model, AppUpdater &updater, UserDefaults &defaults,
                               Clock &clock, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_updater(updater)
    , m_defaults(defaults)
    , m_clock(clock)
{
    connect(&model, &UsageModel::changed, this, &PanelViewModel::update);
    connect(&updater, &AppUpdater::canCheckForUpdatesChanged, this, &PanelViewModel::changed);
    update();
}

bool PanelViewModel::isRefreshing() const
{
    return m_model.isRefreshing();
}

bool PanelViewModel::canCheckForUpdates() const
{
    return m_updater.canCheckForUpdates();
}

bool PanelViewModel::isUpdaterConfigured() const
{
    return m_updater.isConfigured();
}

bool PanelViewModel::canRefreshToken() const
{
    const bool isToolThere =
        std::ranges::any_of(m_model.cliStatuses(), [](const CLIInstallStatus &status) {
            return status.provider == UsageProvider::Claude && status.detectedPath;
        });
    return isToolThere && !m_model.isRefreshingToken();
}

QStringList PanelViewModel::windowLabels() const
{
    QStringList labels;
    for (const UsageWindowKind kind : allWindowKinds)
        labels += shortLabel(kind);
    return labels;
}

int PanelViewModel::windowIndex() const
{
    return static_cast<int>(selectedWindow(m_defaults));
}

void PanelViewModel::setWindowIndex(int index)
{
    const auto kind = allWindowKinds.at(static_cast<std::size_t>(index));
    m_defaults.setValue(QString::fromLatin1(settings::selectedWindow.key), QString(rawValue(kind)));
    update();
}

QStringList PanelViewModel::historyLabels() const
{
    return {shortLabel(UsageWindowKind::Day), shortLabel(UsageWindowKind::Week)};
}

int PanelViewModel::historyIndex() const
{
    return static_cast<int>(historyRange(m_defaults));
}

void PanelViewModel::setHistoryIndex(int index)
{
    m_defaults.setValue(QString::fromLatin1(settings::historyRange.key),
                        index == 0 ? dayRange : weekRange);
    update();
}

void PanelViewModel::update()
{
    const Instant now = m_clock.now();
    const QTimeZone zone = m_clock.zone();
    const UsageSnapshot &snapshot = m_model.snapshot();
    m_updatedText = formatText("updated.format", {formatClockTime(snapshot.generatedAt, zone)});
    readNotices();
    readWindow(snapshot.summary(selectedWindow(m_defaults), now, zone), now);
    m_history = historyData(m_model.history(), historyRange(m_defaults), now, zone);
    Q_EMIT changed();
}

void PanelViewModel::readNotices()
{
    m_updateNotice = tallyglass::updateNotice(m_model.availableUpdate());

    const ClaudeUsageAPIStatus &status = m_model.claudeAPIStatus();
    m_tokenTitle.clear();
    m_tokenBody.clear();
    if (std::holds_alternative<apistatus::NoToken>(status)) {
        m_tokenTitle = displayText("token.missing.title");
        m_tokenBody = displayText("token.missing.body");
    } else if (std::holds_alternative<apistatus::TokenExpired>(status)) {
        m_tokenTitle = displayText("token.expired.title");
        m_tokenBody = displayText("token.expired.body");
    }

    const QStringList missing = missingCLIs(m_model.cliStatuses());
    m_missingCLIsText = missing.isEmpty()
        ? QString()
        : formatText("menu.cliMissing", {missing.join(QStringLiteral(", "))});
}

void PanelViewModel::readWindow(const WindowUsageSummary &window, Instant now)
{
    TokenUsage tokens;
    std::int64_t total = 0;
    std::int64_t events = 0;
    m_providerRows.clear();
    for (const ProviderUsageSummary &provider : window.providers) {
        m_providerRows += providerRow(provider, now);
        tokens = tokens + provider.tokens;
        total = checkedSum(total, provider.tokens.totalTokens());
        events = checkedSum(events, provider.eventCount);
    }
    m_topModels = tallyglass::topModels(window);
    m_totalText = formatTokenCount(total);
    m_cacheText = formatTokenCount(checkedSum(tokens.cacheCreationTokens, tokens.cacheReadTokens));
    m_eventsText = QString::number(events);
    m_resetText = formatText("footer.reset.format", {resetCountdown(window, now)});
}

void PanelViewModel::refresh()
{
    m_model.refresh();
}

void PanelViewModel::refreshToken()
{
    m_model.refreshClaudeToken();
}

void PanelViewModel::checkForUpdates()
{
    m_updater.checkForUpdates();
}

void PanelViewModel::openSite()
{
    QDesktopServices::openUrl(QUrl(QStringLiteral(TALLYGLASS_SITE)));
}

} // namespace tallyglass
