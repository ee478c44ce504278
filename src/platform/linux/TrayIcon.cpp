#include "platform/linux/TrayIcon.h"

#include "model/DisplayTexts.h"

#include <QAction>
#include <QCursor>

namespace tallyglass {

TrayIcon::TrayIcon(QIcon picture)
    : m_picture(std::move(picture))
{
    connect(m_menu.addAction(displayText("menu.open")), &QAction::triggered, this,
            &TrayIcon::openChosen);
    connect(m_menu.addAction(displayText("common.refresh")), &QAction::triggered, this,
            &TrayIcon::refreshChosen);
    connect(m_menu.addAction(displayText("common.settings")), &QAction::triggered, this,
            &TrayIcon::settingsChosen);
    m_menu.addSeparator();
    connect(m_menu.addAction(displayText("common.exit")), &QAction::triggered, this,
            &TrayIcon::quitChosen);

    connect(&m_host, &TrayHost::appeared, this, &TrayIcon::appear);
    if (m_host.isThere())
        appear();
}

bool TrayIcon::isShown() const
{
    return m_icon && m_host.isThere();
}

QRect TrayIcon::area() const
{
    const QRect told = m_icon ? m_icon->geometry() : QRect();
    return told.isEmpty() ? m_lastClick : told;
}

void TrayIcon::setToolTip(const QString &text)
{
    // Trays are told over the bus, hence not without need.
    if (text == m_toolTip)
        return;
    m_toolTip = text;
    if (m_icon)
        m_icon->setToolTip(text);
}

void TrayIcon::appear()
{
    if (m_icon)
        return; // A tray that comes back takes the icon in again by itself.
    m_icon.emplace(m_picture);
    m_icon->setToolTip(m_toolTip);
    m_icon->setContextMenu(&m_menu);
    connect(&*m_icon, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                if (reason != QSystemTrayIcon::Trigger)
                    return;
                m_lastClick = QRect(QCursor::pos(), QSize(1, 1));
                Q_EMIT clicked();
            });
    m_icon->show();
    Q_EMIT appeared();
}

} // namespace tallyglass
