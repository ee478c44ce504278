#pragma once

#include <QObject>

namespace tallyglass {

/// The framework that downloads and installs updates, with a user interface of its own.
class UpdaterEngine : public QObject
{
    Q_OBJECT

public:
    ~UpdaterEngine() override;

    virtual bool canCheckForUpdates() const = 0;
    virtual void checkForUpdates() = 0;

Q_SIGNALS:
    void canCheckForUpdatesChanged();
};

} // namespace tallyglass
