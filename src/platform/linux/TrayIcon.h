#pragma once

#include "platform/MenuBarItem.h"
#include "platform/linux/TrayHost.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <optional>

namespace tallyglass {

/// The program's icon in the tray, as soon as the desktop has one.
class TrayIcon final : public MenuBarItem
{
public:
    explicit TrayIcon(QIcon picture);

    bool isShown() const override;
    QRect area() const override;
    void setToolTip(const QString &text) override;

private:
    void appear();

    TrayHost m_host;
    QMenu m_menu;
    QIcon m_picture;
    std::optional<QSystemTrayIcon> m_icon; ///< made when there is a tray
    QString m_toolTip;
    QRect m_lastClick;
};

} // namespace tallyglass
