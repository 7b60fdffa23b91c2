#include "app/session_check.h"

#include <cstdlib>

namespace ferrowyn {

namespace {

std::string fromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

}  // namespace

SessionEnvironment SessionEnvironment::current() {
    return {fromEnvironment("DISPLAY"), fromEnvironment("WAYLAND_DISPLAY"), fromEnvironment("XDG_SESSION_TYPE")};
}

std::optional<std::string> sessionRefusal(const SessionEnvironment& environment) {
    if (!environment.waylandDisplay.empty() || environment.sessionType == "wayland") {
        return waylandMessage();
    }
    if (environment.display.empty()) {
        return "ferrowyn: there is no display: DISPLAY is not set.\n"
               "Start Ferrowyn from within an X11 desktop session, or set DISPLAY to the X server to work on\n"
               "(for example DISPLAY=:0).";
    }
    return std::nullopt;
}

std::string unreachableDisplayMessage(const SessionEnvironment& environment) {
    return "ferrowyn: cannot connect to the X server \"" + environment.display +
           "\" that DISPLAY names.\n"
           "Check that it is running and that you may use it (XAUTHORITY), or start Ferrowyn from within an X11\n"
           "desktop session.";
}

std::string waylandMessage() {
    return "ferrowyn: this is a Wayland session, and only X11 sessions are supported so far.\n"
           "A Wayland compositor gives keys to the window in front only, and lists windows to nobody, so Alt+Tab\n"
           "cannot be captured and other windows cannot be switched to; XWayland does not change that.\n"
           "Log out and choose an \"Xorg\" (X11) session at the login screen.";
}

}  // namespace ferrowyn
