#pragma once

#include <QObject>

namespace tallyglass {

/// The framework that downloads and installs updates, with a user interface of its own.
class UpdaterEngine : public QObject
{
    Q_OBJECT

public:
    ~UpdaterEngine() override;

    /// To be called once, and only in a build that carries what an update needs.
    virtual void start() = 0;
    virtual bool canCheckForUpdates() const = 0;
    virtual void checkForUpdates() = 0;

Q_SIGNALS:
    void canCheckForUpdatesChanged();
};

} // namespace tallyglass
