#pragma once

#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

/// The way to what the toolkit does not know of the X Window System.
namespace tallyglass::x11 {

struct Free
{
    void operator()(void *memory) const { std::free(memory); }
};
/// Replies are the caller's to free.
template<typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

/// The toolkit's own; null where another window system is used.
inline xcb_connection_t *connection()
{
    const auto *application = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return application ? application->connection() : nullptr;
}

/// The number of a name. Only with a connection.
inline xcb_atom_t atom(std::string_view name)
{
    const auto question =
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(connection(), question, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace tallyglass::x11
