#pragma once

#include "platform/Ports.h"
#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "update/AppUpdateChecker.h"
#include "update/AppUpdater.h"

namespace tallyglass {

/// Owns every long-lived object of the running program, in the order in which they need each other.
/// What is shown is made after it and goes before it.
class TallyglassApp
{
public:
    explicit TallyglassApp(Ports ports);
    /// Ends what is under way. May take a second, when a thread hangs.
    ~TallyglassApp();
    TallyglassApp(const TallyglassApp &) = delete;
    TallyglassApp &operator=(const TallyglassApp &) = delete;

    Ports &ports() { return m_ports; }
    UsageModel &model() { return m_model; }
    AppUpdater &updater() { return m_updater; }

private:
    Ports m_ports;
    Workers m_workers;
    ClaudeUsageAPI m_api;
    AppUpdateChecker m_updates;
    UsageModel m_model;
    AppUpdater m_updater;
};

} // namespace tallyglass
