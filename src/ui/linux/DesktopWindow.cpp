#include "ui/DesktopWindow.h"

#include "ui/linux/X11.h"

#include <QWindow>

#include <array>

namespace tallyglass {

void keepOutOfTaskBar(const QWindow &window)
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

} // namespace tallyglass
