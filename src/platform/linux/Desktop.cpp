#include "platform/Desktop.h"

#include "platform/linux/TrayIcon.h"
#include "platform/linux/X11.h"

#include <QWindow>

#include <array>

namespace tallyglass {

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
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

void becomeDropDown(QWindow &window)
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

void activateApplication()
{
    // Window managers bring a program's windows to the front one by one.
}

QImage systemSymbol(const QString & /*name*/, QSize /*size*/, const QColor & /*color*/)
{
    return {};
}

} // namespace tallyglass
