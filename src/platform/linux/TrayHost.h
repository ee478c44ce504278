#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

namespace tallyglass {

/// The part of the desktop that shows the icons of programs in the background.
class TrayHost : public QObject
{
    Q_OBJECT

public:
    explicit TrayHost(QObject *parent = nullptr);

    bool isThere() const;

Q_SIGNALS:
    void appeared();

private Q_SLOTS:
    void askWatcher();

private:
    void check();

    QDBusServiceWatcher m_watcherWatch; ///< desktops may be restarted
    bool m_hasNotifierHost = false; ///< as of the last answer
};

} // namespace tallyglass
