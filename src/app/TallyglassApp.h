#pragma once

#include "platform/Ports.h"
#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

namespace tallyglass {

/// Owns every long-lived object of the running program, in the order in which they need each other.
class TallyglassApp
{
public:
    explicit TallyglassApp(Ports ports);
    ~TallyglassApp();
    TallyglassApp(const TallyglassApp &) = delete;
    TallyglassApp &operator=(const TallyglassApp &) = delete;

    Ports &ports() { return m_ports; }
    UsageModel &model() { return m_model; }
    AppUpdater &updater() { return m_updater; }

private:
    Ports m_ports;
    ClaudeUsageAPI m_api;
    AppUpdateChecker m_updates;
    UsageModel m_model;
    AppUpdater m_updater;
};

} // namespace tallyglass
