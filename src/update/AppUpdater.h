#pragma once

#include "platform/Ports.h"

#include <QObject>

namespace tallyglass {

/// Whether the build carries what an update needs: a feed address and the key that updates are
/// signed with, both without "$(", the mark of a build setting that was never expanded.
bool isConfiguredForUpdates(const Host &host);

/// What the views know of the framework that installs updates.
class AppUpdater final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isConfigured READ isConfigured CONSTANT FINAL)
    Q_PROPERTY(
        bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged FINAL)

public:
    /// \a engine may be null, as where there is no such framework; it must outlive this object.
    AppUpdater(const Host &host, UpdaterEngine *engine);

    /// Decided once, when this object is made.
    bool isConfigured() const { return m_engine != nullptr; }
    /// False when not configured, and while the framework already checks.
    bool canCheckForUpdates() const { return m_canCheckForUpdates; }

    /// Lets the framework check, with a user interface of its own. Nothing when not configured.
    Q_INVOKABLE void checkForUpdates();

Q_SIGNALS:
    void canCheckForUpdatesChanged();

private:
    void readEngine();

    UpdaterEngine *m_engine; ///< null when not configured
    bool m_canCheckForUpdates = false;
};

} // namespace tallyglass
