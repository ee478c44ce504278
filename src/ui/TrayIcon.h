#pragma once

#include "ui/TrayHost.h"

#include <QMenu>
#include <QObject>
#include <QRect>
#include <QSystemTrayIcon>

#include <optional>

namespace tallyglass {

/// The program's icon in the tray, with its menu. It appears as soon as the desktop has a tray.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    explicit TrayIcon(QObject *parent = nullptr);

    /// Whether the desktop shows it.
    bool isShown() const;
    /// Where it is on the screen. Some trays do not tell: then where it was clicked last; empty
    /// before the first click.
    QRect place() const;
    void setToolTip(const QString &text);

Q_SIGNALS:
    void appeared();
    void clicked();
    void openChosen();
    void refreshChosen();
    void settingsChosen();
    void quitChosen();

private:
    void appear();

    TrayHost m_host;
    QMenu m_menu;
    std::optional<QSystemTrayIcon> m_icon; ///< made when there is a tray
    QString m_toolTip;
    QRect m_lastClick;
};

} // namespace tallyglass
