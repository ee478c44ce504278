#pragma once

#include "services/ClaudeUsageAPIStatus.h"
#include "ui/HistoryData.h"
#include "ui/ModelRow.h"
#include "ui/ProviderRow.h"
#include "ui/UpdateNotice.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

class AppUpdater;
class Clock;
class UsageModel;
class UserDefaults;

/// What the panel shows and does. Every text is final; an empty one is not shown.
class PanelViewModel : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")

    Q_PROPERTY(QString updatedText READ updatedText NOTIFY changed FINAL)
    Q_PROPERTY(bool isRefreshing READ isRefreshing NOTIFY changed FINAL)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY changed FINAL)
    Q_PROPERTY(bool isUpdaterConfigured READ isUpdaterConfigured CONSTANT FINAL)

    Q_PROPERTY(tallyglass::UpdateNotice updateNotice READ updateNotice NOTIFY changed FINAL)
    Q_PROPERTY(QString tokenTitle READ tokenTitle NOTIFY changed FINAL)
    Q_PROPERTY(QString tokenBody READ tokenBody NOTIFY changed FINAL)
    Q_PROPERTY(bool canRefreshToken READ canRefreshToken NOTIFY changed FINAL)
    Q_PROPERTY(QString missingCLIsText READ missingCLIsText NOTIFY changed FINAL)

    Q_PROPERTY(QList<QString> windowLabels READ windowLabels CONSTANT FINAL)
    Q_PROPERTY(int windowIndex READ windowIndex WRITE setWindowIndex NOTIFY changed FINAL)
    Q_PROPERTY(QList<tallyglass::ProviderRow> providerRows READ providerRows NOTIFY changed FINAL)
    Q_PROPERTY(QList<tallyglass::ModelRow> topModels READ topModels NOTIFY changed FINAL)
    Q_PROPERTY(QString totalText READ totalText NOTIFY changed FINAL)
    Q_PROPERTY(QString cacheText READ cacheText NOTIFY changed FINAL)
    Q_PROPERTY(QString eventsText READ eventsText NOTIFY changed FINAL)

    Q_PROPERTY(QList<QString> historyLabels READ historyLabels CONSTANT FINAL)
    Q_PROPERTY(int historyIndex READ historyIndex WRITE setHistoryIndex NOTIFY changed FINAL)
    Q_PROPERTY(tallyglass::HistoryData history READ history NOTIFY changed FINAL)

    Q_PROPERTY(QString resetText READ resetText NOTIFY changed FINAL)

public:
    PanelViewModel(UsageModel &model, AppUpdater &updater, UserDefaults &defaults, Clock &clock,
                   QObject *parent = nullptr);

    const QString &updatedText() const { return m_updatedText; }
    bool isRefreshing() const;
    bool canCheckForUpdates() const;
    bool isUpdaterConfigured() const;

    const UpdateNotice &updateNotice() const { return m_updateNotice; }
    const QString &tokenTitle() const { return m_tokenTitle; }
    const QString &tokenBody() const { return m_tokenBody; }
    /// Only Claude's tool can renew its token, and once at a time.
    bool canRefreshToken() const;
    const QString &missingCLIsText() const { return m_missingCLIsText; }

    QStringList windowLabels() const;
    /// The selected window's index in allWindowKinds.
    int windowIndex() const;
    void setWindowIndex(int index);
    const QList<ProviderRow> &providerRows() const { return m_providerRows; }
    const QList<ModelRow> &topModels() const { return m_topModels; }
    const QString &totalText() const { return m_totalText; }
    const QString &cacheText() const { return m_cacheText; }
    const QString &eventsText() const { return m_eventsText; }

    QStringList historyLabels() const;
    /// 0 is the day, 1 the week.
    int historyIndex() const;
    void setHistoryIndex(int index);
    const HistoryData &history() const { return m_history; }

    const QString &resetText() const { return m_resetText; }

    /// Computes everything for this moment, as when the panel opens: what counts down does not
    /// advance by itself.
    Q_INVOKABLE void update();

    Q_INVOKABLE void refresh();
    Q_INVOKABLE void refreshToken();
    Q_INVOKABLE void checkForUpdates();
    /// Opens the page where new versions are.
    Q_INVOKABLE void openSite();

Q_SIGNALS:
    void changed();

private:
    void readNotices();
    void readWindow(const WindowUsageSummary &window, Instant now);

    UsageModel &m_model;
    AppUpdater &m_updater;
    UserDefaults &m_defaults;
    Clock &m_clock;

    QString m_updatedText;
    UpdateNotice m_updateNotice;
    QString m_tokenTitle;
    QString m_tokenBody;
    QString m_missingCLIsText;
    QList<ProviderRow> m_providerRows;
    QList<ModelRow> m_topModels;
    QString m_totalText;
    QString m_cacheText;
    QString m_eventsText;
    HistoryData m_history;
    QString m_resetText;
};

} // namespace tallyglass
