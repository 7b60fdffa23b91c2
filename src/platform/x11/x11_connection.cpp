#include "platform/x11/x11_connection.h"

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

std::unique_ptr<X11Connection> X11Connection::open(const char* display) {
    int wanted = 0;
    xcb_connection_t* const connection = xcb_connect(display, &wanted);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);  // also frees a connection that failed
        return nullptr;
    }
    int number = 0;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number < wanted && screens.rem > 1; ++number) {
        xcb_screen_next(&screens);
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screens.data, number));
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection, const std::vector<std::string_view>& names) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const auto name : names) {
        cookies.push_back(xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    }
    std::vector<xcb_atom_t> atoms;
    atoms.reserve(names.size());
    for (const auto cookie : cookies) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
        atoms.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

}  // namespace ferrowyn
