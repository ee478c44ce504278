#include "ui/PanelViewModel.h"

#include "platform/Clock.h"
#include "services/Settings.h"
#include "services/UsageModel.h"
#include "update/AppUpdater.h"

namespace tallyglass {

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

void PanelViewModel::update()
{
    const Instant now = m_clock.now();
    const auto window = windowKindFromRawValue(stored(m_defaults, settings::selectedWindow))
                            .value_or(UsageWindowKind::FiveHours);
    const WindowUsageSummary summary = m_model.snapshot().summary(window, now, m_clock.zone());
    m_providerRows.clear();
    for (const ProviderUsageSummary &provider : summary.providers)
        m_providerRows += providerRow(provider, now);
    Q_EMIT changed();
}

void PanelViewModel::refresh()
{
    m_model.refresh();
}

} // namespace tallyglass
