#pragma once

#include "platform/UpdaterEngine.h"

@class SPUStandardUpdaterController;
@class TGCanCheckObserver;

namespace tallyglass {

/// Sparkle's standard updater: it downloads, verifies and installs, and asks the user by itself.
class SparkleUpdaterEngine final : public UpdaterEngine
{
public:
    SparkleUpdaterEngine();
    ~SparkleUpdaterEngine() override;

    void start() override;
    bool canCheckForUpdates() const override;
    void checkForUpdates() override;

private:
    SPUStandardUpdaterController *m_updaterController = nullptr; ///< nil until started
    TGCanCheckObserver *m_canCheckObservation = nullptr;
};

} // namespace tallyglass
