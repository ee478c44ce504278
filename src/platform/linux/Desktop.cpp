#include "platform/Desktop.h"

#include "model/DisplayTexts.h"
#include "platform/linux/Buses.h"
#include "platform/linux/TrayHost.h"
#include "platform/linux/X11.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QWindow>

#include <array>
#include <optional>

namespace tallyglass {

namespace {

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

} // namespace

/// Without a display the program still counts, writes its files and notifies; windows are then
/// drawn into memory.
void prepareForWindows()
{
    const bool hasDisplay =
        qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (!hasDisplay && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    leaveOutSilentBuses();
}

std::unique_ptr<MenuBarItem> makeMenuBarItem(const MenuBarIcon &icon)
{
    return std::make_unique<TrayIcon>(icon.colored);
}

/// Without a compositor what is left out of a corner is black.
int dropDownRadius()
{
    return 0;
}

void becomeDropDown(QWindow &window, const QRect & /*icon*/)
{
    xcb_connection_t *connection = x11::connection();
    if (!connection)
        return;
    // Appended: the toolkit keeps states that it does not know.
    const std::array states{x11::atom("_NET_WM_STATE_SKIP_TASKBAR"),
                            x11::atom("_NET_WM_STATE_SKIP_PAGER")};
    xcb_change_property(connection, XCB_PROP_MODE_APPEND, static_cast<xcb_window_t>(window.winId()),
                        x11::atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(),
                        states.data());
}

void bringToFront(QWindow &window)
{
    window.raise();
    window.requestActivate();
}

QImage systemSymbol(const QString & /*name*/, QSize /*size*/, const QColor & /*color*/)
{
    return {};
}

} // namespace tallyglass
