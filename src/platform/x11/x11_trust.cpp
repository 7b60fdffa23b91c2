#include "platform/x11/x11_trust.h"

#include <fmt/format.h>
#include <xcb/xinput.h>

#include <string_view>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

/// Xephyr crashes when a key is pressed that is grabbed on its keyboard. Only the name of that keyboard identifies it.
bool isXephyr(xcb_connection_t* connection) {
    const XcbReply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (reply == nullptr) {
        return false;
    }
    for (auto device = xcb_input_xi_query_device_infos_iterator(reply.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(xcb_input_xi_device_info_name(device.data), device.data->name_len);
        if (name == "Xephyr virtual keyboard") {
            return true;
        }
    }
    return false;
}

}  // namespace

X11Trust::X11Trust(const X11DesktopModel& model, const X11InputContext& context, SessionLockState sessionLock,
                   std::string inputObstacle, Log& log)
    : model_(model),
      context_(context),
      sessionLock_(std::move(sessionLock)),
      inputObstacle_(std::move(inputObstacle)),
      log_(log) {
    if (!inputObstacle_.empty()) {
        log_.write(LogLevel::error, "permissions", inputObstacle_);
    }
    managerSubscription_ = model_.windowManagerChanges().subscribe([this](bool isRunning) {
        log_.write(LogLevel::standard, "permissions",
                   isRunning ? "A window manager is running" : "The window manager has gone; waiting for one");
        changes_.send(true);
    });
    lockSubscription_ = sessionLock_.observe([this] { changes_.send(true); });
}

bool X11Trust::isTrusted() const {
    return inputObstacle_.empty() && model_.isWindowManagerRunning();
}

bool X11Trust::requestWithPrompt() {
    if (!inputObstacle_.empty()) {
        log_.write(LogLevel::error, "permissions", inputObstacle_);
    }
    if (!model_.isWindowManagerRunning()) {
        log_.write(LogLevel::standard, "permissions",
                   "No window manager with the extended window-manager hints is running; start one, and switching "
                   "becomes available");
    }
    return isTrusted();
}

bool X11Trust::isSecureInputActive() const {
    const bool isHeld = context_.isKeyboardHeldElsewhere.load();
    if (isHeld && context_.requestKeyboardProbe) {
        // No event reports the end of another client's grab, so it is tried again. Trying has no side effect while the
        // other client has the grab.
        context_.requestKeyboardProbe();
    }
    return isHeld || sessionLock_.isLocked();
}

Subscription X11Trust::observeLostTriggers(std::function<void()> handler) {
    return lostTriggers_.subscribe([handler = std::move(handler)](bool) { handler(); });
}

Subscription X11Trust::observeChanges(std::function<void()> handler) {
    return changes_.subscribe([handler = std::move(handler)](bool) { handler(); });
}

std::string inputObstacle(xcb_connection_t* connection) {
    constexpr std::uint16_t neededMajor = 2;
    constexpr std::uint16_t neededMinor = 2;
    const auto* const extension = xcb_get_extension_data(connection, &xcb_input_id);
    if (extension == nullptr || extension->present == 0) {
        return "This X server has no XInput extension; Ferrowyn needs XInput 2.2 to see its shortcut: update the X "
               "server";
    }
    const XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection, xcb_input_xi_query_version(connection, neededMajor, neededMinor), nullptr));
    if (version == nullptr) {
        return "This X server has no XInput 2; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server";
    }
    if (std::pair(version->major_version, version->minor_version) < std::pair(neededMajor, neededMinor)) {
        return fmt::format(
            "This X server has XInput {}.{}; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server",
            version->major_version, version->minor_version);
    }
    if (isXephyr(connection)) {
        return "This X server is Xephyr, which crashes when the shortcut that Ferrowyn has taken is pressed: use "
               "another "
               "X server";
    }
    return {};
}

}  // namespace ferrowyn
