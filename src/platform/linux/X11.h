#pragma once

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
xcb_connection_t *connection();

/// The number of a name. Only with a connection.
xcb_atom_t atom(std::string_view name);

} // namespace tallyglass::x11
