#include "update/AppUpdater.h"

#include "update/WebAddress.h"

namespace tallyglass {

namespace {

bool isExpanded(const QString &buildSetting)
{
    return !buildSetting.contains(QLatin1String("$("));
}

} // namespace

bool isConfiguredForUpdates(const Host &host)
{
    return webAddress(host.feedUrl) && isExpanded(host.feedUrl)
        && !host.publicKey.trimmed().isEmpty() && isExpanded(host.publicKey);
}

AppUpdater::AppUpdater(const Host &host, UpdaterEngine *engine)
    : m_engine(isConfiguredForUpdates(host) ? engine : nullptr)
{
    if (!m_engine)
        return;
    m_engine->start();
    readEngine();
    // Across threads Qt queues the call, so the views are told on the main thread in any case.
    connect(m_engine, &UpdaterEngine::canCheckForUpdatesChanged, this, &AppUpdater::readEngine);
}

void AppUpdater::readEngine()
{
    const bool canCheck = m_engine->canCheckForUpdates();
    if (canCheck == m_canCheckForUpdates)
        return;
    m_canCheckForUpdates = canCheck;
    Q_EMIT canCheckForUpdatesChanged();
}

void AppUpdater::checkForUpdates()
{
    if (m_engine)
        m_engine->checkForUpdates();
}

} // namespace tallyglass
