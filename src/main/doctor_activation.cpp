#include "main/doctor_activation.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <string_view>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

using Verdict = DoctorFinding::Verdict;

/// A window manager that activates windows takes only some milliseconds.
constexpr std::chrono::milliseconds patience{1500};
constexpr std::uint32_t mostWindows = 4096;

/// Two windows that exist as long as this object, and what the window manager reports about them.
class ActivationTrial {
public:
    explicit ActivationTrial(const X11Connection& connection) : connection_(connection) {
        const auto atoms = connection.internAtoms({"_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST", "_NET_WM_WINDOW_TYPE",
                                                   "_NET_WM_WINDOW_TYPE_DIALOG", "_NET_WM_NAME", "UTF8_STRING"});
        activeWindow_ = atoms[0];
        clientList_ = atoms[1];
        const std::uint32_t wanted = XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(server(), connection_.root(), XCB_CW_EVENT_MASK, &wanted);
        for (auto& window : windows_) {
            window = xcb_generate_id(server());
            xcb_create_window(server(), XCB_COPY_FROM_PARENT, window, connection_.root(), 0, 0, 1, 1, 0,
                              XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
            // Tiling managers make room for a window, but let a dialog float.
            xcb_change_property(server(), XCB_PROP_MODE_REPLACE, window, atoms[2], XCB_ATOM_ATOM, 32, 1, &atoms[3]);
            constexpr std::string_view name = "Ferrowyn --doctor";
            for (const auto property : {atoms[4], xcb_atom_t{XCB_ATOM_WM_NAME}}) {
                xcb_change_property(server(), XCB_PROP_MODE_REPLACE, window, property,
                                    property == atoms[4] ? atoms[5] : xcb_atom_t{XCB_ATOM_STRING}, 8,
                                    static_cast<std::uint32_t>(name.size()), name.data());
            }
            xcb_map_window(server(), window);
        }
        xcb_flush(server());
    }
    ~ActivationTrial() {
        for (const auto window : windows_) {
            xcb_destroy_window(server(), window);
        }
        const std::uint32_t nothing = XCB_EVENT_MASK_NO_EVENT;
        xcb_change_window_attributes(server(), connection_.root(), XCB_CW_EVENT_MASK, &nothing);
        xcb_flush(server());
    }
    ActivationTrial(const ActivationTrial&) = delete;
    ActivationTrial& operator=(const ActivationTrial&) = delete;

    [[nodiscard]] xcb_window_t active() const {
        return property(activeWindow_, 1).item(XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    }
    /// False when the window manager does not manage the windows.
    [[nodiscard]] bool waitUntilManaged() const {
        return waitUntil([this] {
            const auto list = property(clientList_, mostWindows);
            const auto listed = list.items(XCB_ATOM_WINDOW);
            return std::ranges::all_of(windows_, [&](auto window) { return std::ranges::count(listed, window) > 0; });
        });
    }
    /// Activates one after the other, so that at least one of them was not active before.
    [[nodiscard]] bool activateBoth() const {
        return std::ranges::all_of(windows_, [this](auto window) { return activate(window); });
    }
    [[nodiscard]] bool activate(xcb_window_t window) const {
        constexpr std::uint32_t sourcePager = 2;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = activeWindow_;
        message.data.data32[0] = sourcePager;
        message.data.data32[1] = serverTimeNow(server()).value_or(XCB_CURRENT_TIME);
        xcb_send_event(server(), 0, connection_.root(),
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        return waitUntil([this, window] { return active() == window; });
    }

private:
    [[nodiscard]] xcb_connection_t* server() const { return connection_.get(); }
    [[nodiscard]] X11Property property(xcb_atom_t name, std::uint32_t length) const {
        return X11Property::collect(
            server(), xcb_get_property(server(), 0, connection_.root(), name, XCB_ATOM_WINDOW, 0, length));
    }
    /// Checks the condition again after each change of the root window.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) const {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        xcb_flush(server());
        while (!condition()) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0 || !connection_.isAlive()) {
                return false;
            }
            bool hasNews = false;
            while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(server())}) {
                hasNews = true;
            }
            if (!hasNews) {
                pollfd readable{.fd = connection_.fileDescriptor(), .events = POLLIN, .revents = 0};
                poll(&readable, 1, static_cast<int>(left.count()));
            }
        }
        return true;
    }

    const X11Connection& connection_;
    xcb_atom_t activeWindow_ = XCB_ATOM_NONE;
    xcb_atom_t clientList_ = XCB_ATOM_NONE;
    std::array<xcb_window_t, 2> windows_{};
};

}  // namespace

DoctorFinding activationFinding(const X11Connection& connection) {
    const std::string subject = "activation";
    const ActivationTrial trial(connection);
    const auto before = trial.active();
    if (!trial.waitUntilManaged()) {
        return {
            Verdict::notice, subject, "the window manager does not list two windows that were opened to try it", {}};
    }
    const bool works = trial.activateBoth();
    if (before != XCB_WINDOW_NONE) {
        static_cast<void>(trial.activate(before));
    }
    if (!works) {
        return {Verdict::bad, subject, "the window manager does not activate a window when it is asked to",
                "Use another window manager (dwm does it with its patch \"focusonnetactive\")."};
    }
    return {Verdict::good, subject, "the window manager activates a window when it is asked to", {}};
}

}  // namespace ferrowyn
