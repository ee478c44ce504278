#include "platform/linux/X11.h"

#include <QGuiApplication>

namespace tallyglass::x11 {

xcb_connection_t *connection()
{
    const auto *application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return application ? application->connection() : nullptr;
}

xcb_atom_t atom(std::string_view name)
{
    const auto question =
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection(), question, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace tallyglass::x11
