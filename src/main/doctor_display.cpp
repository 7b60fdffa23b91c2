#include "main/doctor_display.h"

#include <fmt/format.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "core/texts.h"
#include "input/switching_health.h"
#include "main/doctor_activation.h"
#include "main/single_instance.h"
#include "platform/keyboard_tap.h"
#include "platform/log.h"
#include "platform/x11/keyboard/x11_keyboard_grabs.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_text.h"
#include "platform/x11/x11_trust.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

using Verdict = DoctorFinding::Verdict;

/// In 32-bit units; longer than any list of hints.
constexpr std::uint32_t maximumPropertyLength = 4096;

/// Keeps the errors that the keyboard's parts log.
class CollectingLog final : public Log {
public:
    void write(LogLevel level, std::string_view /*category*/, std::string_view message) override {
        if (level == LogLevel::error) {
            errors.emplace_back(message);
        }
    }
    std::vector<std::string> errors;
};

X11Property property(const X11Connection& connection, xcb_window_t window, std::string_view name) {
    return X11Property::collect(connection.get(),
                                xcb_get_property(connection.get(), 0, window, connection.internAtoms({name}).front(),
                                                 XCB_GET_PROPERTY_TYPE_ANY, 0, maximumPropertyLength));
}

/// The window manager's window; None when no manager runs.
xcb_window_t managerWindow(const X11Connection& connection) {
    constexpr std::string_view check = "_NET_SUPPORTING_WM_CHECK";
    const auto window = property(connection, connection.root(), check).item(XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    // A window left over from a manager that has ended does not name itself in this property.
    const bool isAlive =
        window != XCB_WINDOW_NONE && property(connection, window, check).item(XCB_ATOM_WINDOW) == window;
    return isAlive ? window : xcb_window_t{XCB_WINDOW_NONE};
}

std::string managerName(const X11Connection& connection, xcb_window_t window) {
    const auto name = property(connection, window, "_NET_WM_NAME");
    const auto bytes = name.bytes(connection.internAtoms({"UTF8_STRING"}).front());
    return bytes && !bytes->empty() ? textFromProperty(*bytes, X11TextEncoding::utf8, name.isCut())
                                    : "a window manager without a name";
}

/// The hints that the window manager does not list.
std::string missingHints(const X11Connection& connection, const std::vector<std::string_view>& hints) {
    const auto supported = property(connection, connection.root(), "_NET_SUPPORTED");
    const auto listed = supported.items(XCB_ATOM_ATOM);
    const auto atoms = connection.internAtoms(hints);
    std::string missing;
    for (std::size_t index = 0; index < hints.size(); ++index) {
        if (std::ranges::find(listed, atoms[index]) == listed.end()) {
            missing += (missing.empty() ? "" : ", ") + std::string(hints[index]);
        }
    }
    return missing;
}

/// Whether another client has grabbed the key with this modifier on all keyboards, as window managers do.
bool isBoundByManager(const X11Connection& connection, xcb_keycode_t keyCode, std::uint32_t modifiers) {
    auto* const server = connection.get();
    const auto cookie = xcb_grab_key_checked(server, 0, connection.root(), static_cast<std::uint16_t>(modifiers),
                                             keyCode, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(server, cookie));
    xcb_ungrab_key(server, keyCode, connection.root(), static_cast<std::uint16_t>(modifiers));
    return error != nullptr && error->error_code == XCB_ACCESS;
}

/// Whether another client has grabbed a key of the trigger's modifier. That client then holds the keyboard from the
/// press of that key on, so no other client can grab it when the trigger is complete.
bool isModifierHeld(const X11Connection& connection, const X11TapKeyboard& keyboard) {
    auto* const server = connection.get();
    constexpr std::uint32_t noModifier = 0;
    constexpr std::uint32_t keyEvents = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const auto* const setup = xcb_get_setup(server);
    for (std::uint32_t code = setup->min_keycode; code <= setup->max_keycode; ++code) {
        if ((keyboard.layout().modifiersOfKey(code) & keyboard.triggerMask()) == 0) {
            continue;
        }
        const XcbReply<xcb_input_xi_passive_grab_device_reply_t> grab(xcb_input_xi_passive_grab_device_reply(
            server,
            xcb_input_xi_passive_grab_device(server, XCB_CURRENT_TIME, connection.root(), XCB_CURSOR_NONE, code,
                                             XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                             XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                             XCB_INPUT_GRAB_OWNER_OWNER, &keyEvents, &noModifier),
            nullptr));
        const bool isRefused = grab != nullptr && grab->num_modifiers > 0;
        xcb_input_xi_passive_ungrab_device(server, connection.root(), code, XCB_INPUT_DEVICE_ALL_MASTER, 1,
                                           XCB_INPUT_GRAB_TYPE_KEYCODE, &noModifier);
        if (isRefused || isBoundByManager(connection, static_cast<xcb_keycode_t>(code), noModifier)) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string serverVersion(std::string_view vendor, std::uint32_t releaseNumber) {
    if (vendor.find("X.Org") == std::string_view::npos) {
        return std::to_string(releaseNumber);
    }
    const auto generation = releaseNumber / 10'000'000;
    const auto major = releaseNumber / 100'000 % 100;
    const auto minor = releaseNumber / 1'000 % 100;
    const auto patch = releaseNumber % 1'000;
    // From version 21 on, the first number (always 1) is left out.
    constexpr std::uint32_t firstOfTheNewNumbers = 21;
    if (generation == 1 && major >= firstOfTheNewNumbers) {
        return fmt::format("{}.{}.{}", major, minor, patch);
    }
    return patch == 0 ? fmt::format("{}.{}.{}", generation, major, minor)
                      : fmt::format("{}.{}.{}.{}", generation, major, minor, patch);
}

DoctorDisplay::DoctorDisplay(const X11Connection& connection, std::string display, SwitcherModifier trigger)
    : connection_(connection), display_(std::move(display)), trigger_(trigger) {}

DoctorFinding DoctorDisplay::server() const {
    const auto* const setup = xcb_get_setup(connection_.get());
    const std::string_view vendor(xcb_setup_vendor(setup), static_cast<std::size_t>(xcb_setup_vendor_length(setup)));
    return {Verdict::good,
            "display",
            fmt::format("{}, {} {}, {} x {} pixels", display_, vendor, serverVersion(vendor, setup->release_number),
                        connection_.screen()->width_in_pixels, connection_.screen()->height_in_pixels),
            {}};
}

DoctorFinding DoctorDisplay::windowManager() const {
    const std::string subject = "window manager";
    const auto window = managerWindow(connection_);
    if (window == XCB_WINDOW_NONE) {
        return {Verdict::bad, subject, "none with the extended window-manager hints is running",
                "Start one; Ferrowyn then goes on by itself."};
    }
    const auto name = managerName(connection_, window);
    if (const auto missing = missingHints(connection_, {"_NET_CLIENT_LIST", "_NET_ACTIVE_WINDOW"}); !missing.empty()) {
        return {Verdict::bad, subject, fmt::format("{} lacks {}", name, missing),
                "Ferrowyn can neither list nor activate windows without these hints: use another window manager."};
    }
    const auto missing =
        missingHints(connection_, {"_NET_CLIENT_LIST_STACKING", "_NET_CURRENT_DESKTOP", "_NET_WM_STATE_HIDDEN"});
    if (!missing.empty()) {
        return {Verdict::notice, subject, fmt::format("{} lacks {}", name, missing),
                "The order, the desktops or the minimised state of windows may be shown wrongly."};
    }
    return {Verdict::good, subject, fmt::format("{}, with the hints that are needed", name), {}};
}

DoctorFinding DoctorDisplay::activation() const {
    const auto connection = X11Connection::open(display_.c_str());
    return connection ? activationFinding(*connection)
                      : DoctorFinding{Verdict::bad, "activation", "the X server takes no further connection", {}};
}

DoctorFinding DoctorDisplay::inputExtension() const {
    const auto connection = X11Connection::open(display_.c_str());
    if (!connection) {
        return {Verdict::bad, "XInput", "the X server takes no further connection", {}};
    }
    const auto* const extension = xcb_get_extension_data(connection->get(), &xcb_input_id);
    // A version above that of any server, so that the server answers with its highest.
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        extension == nullptr || extension->present == 0
            ? nullptr
            : xcb_input_xi_query_version_reply(connection->get(), xcb_input_xi_query_version(connection->get(), 2, 99),
                                               nullptr));
    if (version == nullptr || std::pair(int{version->major_version}, int{version->minor_version}) < std::pair(2, 2)) {
        return {Verdict::bad, "XInput", inputObstacle(connection_.get()), "Update the X server."};
    }
    if (auto obstacle = inputObstacle(connection_.get()); !obstacle.empty()) {
        return {Verdict::bad, "XInput", std::move(obstacle), "Ferrowyn takes no shortcut here."};
    }
    return {Verdict::good, "XInput", fmt::format("{}.{}", version->major_version, version->minor_version), {}};
}

DoctorFinding DoctorDisplay::triggerKeys() const {
    const auto keys = fmt::format("{}+Tab", linuxTexts().modifierKey(trigger_));
    const std::string subject = "trigger keys";
    const auto connection = X11Connection::open(display_.c_str());
    CollectingLog log;
    const auto reader = connection ? X11KeyboardReader::create(*connection) : std::nullopt;
    const auto keyboard = reader ? X11TapKeyboard::create(*connection, trigger_, log) : nullptr;
    if (!keyboard) {
        return {Verdict::bad, subject, "the keyboard cannot be read", "Update the X server."};
    }
    if (!inputObstacle(connection->get()).empty()) {
        return {Verdict::bad, subject, fmt::format("{} cannot be taken on this X server", keys),
                "Use another X server."};
    }
    keyboard->applyGrabs(true, false);
    keyboard->applyGrabs(false, false);
    if (keyboard->triggerMask() == 0 || !keyboard->layout().keyCodeOf(virtual_key::tab)) {
        return {Verdict::bad, subject, fmt::format("no key of the keyboard is {}", keys),
                "Choose another modifier in the settings, or another keyboard layout."};
    }
    if (isModifierHeld(*connection, *keyboard)) {
        return {Verdict::bad, subject,
                fmt::format("another program, perhaps the window manager, answers {} by itself and has the keyboard "
                            "before {} is complete",
                            linuxTexts().modifierKey(trigger_), keys),
                "Choose another modifier in the settings, or turn that program's shortcut off."};
    }
    if (!log.errors.empty()) {
        if (isProgramRunning()) {
            return {Verdict::good, subject, fmt::format("{} belongs to the Ferrowyn that runs", keys), {}};
        }
        return {Verdict::bad, subject, fmt::format("another program holds {} where Ferrowyn needs it", keys),
                "End it (another window switcher, perhaps), or choose another modifier in the settings."};
    }
    const auto tab = static_cast<xcb_keycode_t>(*keyboard->layout().keyCodeOf(virtual_key::tab));
    return {Verdict::good,
            subject,
            isBoundByManager(*connection, tab, keyboard->triggerMask())
                ? fmt::format("{} is free; the window manager has it too, but Ferrowyn sees it first", keys)
                : fmt::format("{} is free", keys),
            {}};
}

DoctorFinding DoctorDisplay::secureInput() const {
    const std::string subject = "secure input";
    const auto connection = X11Connection::open(display_.c_str());
    CollectingLog log;
    if (!connection || !X11KeyboardReader::create(*connection)) {
        return {Verdict::notice, subject, "the keyboard cannot be asked", {}};
    }
    X11PassiveGrabs grabs(*connection, log);
    grabs.readDevices();
    if (!X11ActiveGrab(*connection, grabs).probe()) {
        return {Verdict::notice, subject, "another program holds the keyboard for itself now",
                "A password prompt or an open menu, perhaps; the switcher works again when it lets go."};
    }
    return {Verdict::good, subject, "nobody holds the keyboard", {}};
}

DoctorFinding DoctorDisplay::compositor() const {
    if (hasOwner(fmt::format("_NET_WM_CM_S{}", connection_.screenNumber()))) {
        return {Verdict::good, "compositor", "running", {}};
    }
    return {Verdict::notice, "compositor", "none; the panel is opaque",
            "A compositor such as picom makes the panel translucent."};
}

DoctorFinding DoctorDisplay::program() const {
    const std::string subject = "Ferrowyn";
    if (!isProgramRunning()) {
        return {Verdict::good, subject, "not running", {}};
    }
    const auto word = SingleInstance::wordOfRunning(connection_);
    const auto problem = word ? switchingProblemNamed(*word) : std::nullopt;
    if (!problem) {
        return {Verdict::good, subject, "running", {}};
    }
    if (*problem == SwitchingHealth::Problem::triggerAnsweredElsewhere) {
        return {Verdict::bad, subject, "running, but another program answers the shortcut",
                "Choose another modifier in the settings, or take the shortcut away from the other program."};
    }
    return {Verdict::bad, subject, "running, but the chosen windows do not come to the front",
            "Use a window manager that activates windows on request."};
}

bool DoctorDisplay::hasEmbeddingTray() const {
    return hasOwner(fmt::format("_NET_SYSTEM_TRAY_S{}", connection_.screenNumber()));
}

bool DoctorDisplay::isProgramRunning() const {
    return hasOwner(SingleInstance::selectionName());
}

bool DoctorDisplay::hasOwner(const std::string& selection) const {
    auto* const server = connection_.get();
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        server, xcb_get_selection_owner(server, connection_.internAtoms({selection}).front()), nullptr));
    return reply != nullptr && reply->owner != XCB_WINDOW_NONE;
}

}  // namespace ferrowyn
