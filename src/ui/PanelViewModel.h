#pragma once

#include "ui/ProviderRow.h"

#include <QList>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

class AppUpdater;
class Clock;
class UsageModel;
class UserDefaults;

/// What the panel shows and does. Every text is final.
class PanelViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(QList<tallyglass::ProviderRow> providerRows READ providerRows NOTIFY changed FINAL)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY changed FINAL)

public:
    PanelViewModel(UsageModel &model, AppUpdater &updater, UserDefaults &defaults, Clock &clock,
                   QObject *parent = nullptr);

    const QList<ProviderRow> &providerRows() const { return m_providerRows; }
    bool isRefreshing() const;

    /// Computes everything for this moment, as when the panel opens: what counts down does not
    /// advance by itself.
    Q_INVOKABLE void update();
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void changed();

private:
    UsageModel &m_model;
    AppUpdater &m_updater;
    UserDefaults &m_defaults;
    Clock &m_clock;
    QList<ProviderRow> m_providerRows;
};

} // namespace tallyglass
