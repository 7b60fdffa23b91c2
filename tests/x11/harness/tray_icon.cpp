#include "tests/x11/harness/tray_icon.h"

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {

namespace {

std::vector<xcb_window_t> childrenOf(xcb_connection_t* connection, xcb_window_t window) {
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree) {
        return {};
    }
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    return {children.begin(), children.end()};
}

bool isIcon(const TestDesktop& desktop, xcb_window_t window) {
    // The toolkit's windows could be embedded too.
    const auto clients = desktop.clientList();
    return std::ranges::find(clients, window) == clients.end() &&
           desktop.text(window, "WM_CLASS").find("ferrowyn") != std::string::npos &&
           !desktop.cardinals(window, "_XEMBED_INFO").empty() && desktop.isViewable(window);
}

}  // namespace

std::optional<TestDesktop::Place> embeddedTrayIcon(const TestDesktop& desktop) {
    // Trays put icons into windows of their own, some deeper than others. Before one does, it is a child of the root.
    auto inside = childrenOf(desktop.connection(), desktop.root());
    while (!inside.empty()) {
        std::vector<xcb_window_t> deeper;
        for (const auto parent : inside) {
            const auto children = childrenOf(desktop.connection(), parent);
            deeper.insert(deeper.end(), children.begin(), children.end());
        }
        for (const auto window : deeper) {
            if (isIcon(desktop, window)) {
                return desktop.placeOf(window);
            }
        }
        inside = deeper;
    }
    return std::nullopt;
}

}  // namespace ferrowyn::x11test
