#include "platform/x11/keyboard/x11_keyboard_grabs.h"

#include <fmt/format.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"
#include "platform/x11/xcb_xkb.h"

namespace ferrowyn {

namespace {

constexpr std::uint32_t keyEvents = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;

/// What is in the first of two sorted lists alone.
std::vector<std::uint32_t> without(const std::vector<std::uint32_t>& list, const std::vector<std::uint32_t>& excluded) {
    std::vector<std::uint32_t> rest;
    std::ranges::set_difference(list, excluded, std::back_inserter(rest));
    return rest;
}

/// Of two numbers of requests, which wrap around.
bool isBefore(std::uint32_t sequence, std::uint32_t other) {
    return static_cast<std::int32_t>(sequence - other) < 0;
}

}  // namespace

void X11PassiveGrabs::setKeys(std::vector<std::uint32_t> keyCodes, std::vector<std::uint32_t> modifiers) {
    std::sort(modifiers.begin(), modifiers.end());
    keyCodes_ = std::move(keyCodes);
    modifiers_ = std::move(modifiers);
}

void X11PassiveGrabs::readDevices() {
    auto* const connection = connection_.get();
    const XcbReply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (reply == nullptr) {
        return;
    }
    masters_.clear();
    masterKeyboards_.clear();
    for (auto device = xcb_input_xi_query_device_infos_iterator(reply.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) {
            masters_[device.data->deviceid] = device.data->attachment;
        } else if (device.data->type == XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD) {
            if (masterKeyboards_.empty()) {
                mainMaster_ = device.data->deviceid;
            }
            masterKeyboards_.insert(device.data->deviceid);
        }
    }
    // The server dropped the grabs of devices that are gone.
    std::erase_if(installed_, [this](const auto& grab) {
        return grab.first.device != XCB_INPUT_DEVICE_ALL && !masters_.contains(grab.first.device);
    });
}

std::set<X11PassiveGrabs::Target> X11PassiveGrabs::wantedTargets() const {
    std::set<Target> wanted;
    for (const auto keyCode : keyCodes_) {
        if (holdsKeysBack()) {
            wanted.insert({XCB_INPUT_DEVICE_ALL, keyCode});
            continue;
        }
        for (const auto& [device, master] : masters_) {
            wanted.insert({device, keyCode});
        }
    }
    return wanted;
}

void X11PassiveGrabs::install() {
    const auto wanted = wantedTargets();
    // What is grabbed already and still wanted is not touched: given back for however short a time, the key would be
    // the window manager's.
    for (auto& [target, modifiers] : installed_) {
        const auto unwanted = wanted.contains(target) ? without(modifiers, modifiers_) : modifiers;
        if (!unwanted.empty()) {
            ungrab(target, unwanted);
            modifiers = without(modifiers, unwanted);
        }
    }
    std::erase_if(installed_, [](const auto& grab) { return grab.second.empty(); });
    std::vector<std::pair<Target, xcb_input_xi_passive_grab_device_cookie_t>> requests;
    for (const auto& target : wanted) {
        const auto installed = installed_.find(target);
        const auto missing = installed == installed_.end() ? modifiers_ : without(modifiers_, installed->second);
        if (!missing.empty()) {
            requests.emplace_back(target, requestGrab(target, missing));
        }
    }
    // The grabs of the other way are gone by the first of these requests.
    const bool isChange = wayChanges_.empty() || wayChanges_.back().holdsKeysBack != holdsKeysBack();
    if (isChange && !requests.empty()) {
        wayChanges_.push_back({requests.front().second.sequence, holdsKeysBack()});
    }
    bool isGranted = true;
    for (const auto& [target, cookie] : requests) {
        isGranted = readAnswer(target, cookie) && isGranted;
    }
    if (!isGranted && holdsKeysBack()) {
        isRefusedOnAllDevices_ = true;
        install();
    }
}

bool X11PassiveGrabs::heldKeysBackAt(std::uint32_t sequence) {
    while (wayChanges_.size() > 1 && !isBefore(sequence, wayChanges_[1].sequence)) {
        wayChanges_.pop_front();
    }
    return !wayChanges_.empty() && wayChanges_.front().holdsKeysBack;
}

void X11PassiveGrabs::remove() {
    for (const auto& [target, modifiers] : installed_) {
        ungrab(target, modifiers);
    }
    installed_.clear();
}

void X11PassiveGrabs::watchModifiers(bool isWatching) {
    xcb_xkb_select_events_details_t details{};
    details.affectState = XCB_XKB_STATE_PART_MODIFIER_STATE;
    details.stateDetails = isWatching ? std::uint16_t{XCB_XKB_STATE_PART_MODIFIER_STATE} : std::uint16_t{0};
    std::set<xcb_input_device_id_t> masters;
    for (const auto& [slave, master] : masters_) {
        masters.insert(master);
    }
    for (const auto master : masters) {
        xcb_xkb_select_events_aux(connection_.get(), master, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0, &details);
    }
}

xcb_input_device_id_t X11PassiveGrabs::masterOf(xcb_input_device_id_t slave) const {
    const auto found = masters_.find(slave);
    return found != masters_.end() ? found->second : mainMaster_;
}

void X11PassiveGrabs::ungrab(const Target& target, const std::vector<std::uint32_t>& modifiers) {
    xcb_input_xi_passive_ungrab_device(connection_.get(), connection_.root(), target.keyCode, target.device,
                                       static_cast<std::uint16_t>(modifiers.size()), XCB_INPUT_GRAB_TYPE_KEYCODE,
                                       modifiers.data());
}

xcb_input_xi_passive_grab_device_cookie_t X11PassiveGrabs::requestGrab(
    const Target& target, const std::vector<std::uint32_t>& modifiers) const {
    // A grab on all devices is none of a keyboard to the server, which takes the mode for paired devices for it.
    const auto mode =
        target.device == XCB_INPUT_DEVICE_ALL ? XCB_INPUT_GRAB_MODE_22_SYNC : XCB_INPUT_GRAB_MODE_22_ASYNC;
    return xcb_input_xi_passive_grab_device(connection_.get(), XCB_CURRENT_TIME, connection_.root(), XCB_CURSOR_NONE,
                                            target.keyCode, target.device, static_cast<std::uint16_t>(modifiers.size()),
                                            1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, mode,
                                            XCB_INPUT_GRAB_OWNER_NO_OWNER, &keyEvents, modifiers.data());
}

bool X11PassiveGrabs::readAnswer(const Target& target, xcb_input_xi_passive_grab_device_cookie_t cookie) {
    xcb_generic_error_t* rawError = nullptr;
    const XcbReply<xcb_input_xi_passive_grab_device_reply_t> reply(
        xcb_input_xi_passive_grab_device_reply(connection_.get(), cookie, &rawError));
    const XcbReply<xcb_generic_error_t> error(rawError);
    if (reply == nullptr) {
        // A keyboard that was unplugged in the meantime, as a rule.
        log_.write(LogLevel::standard, "input",
                   fmt::format("Cannot grab key {} of keyboard {}: error {}", target.keyCode, target.device,
                               error != nullptr ? int{error->error_code} : 0));
        return target.device != XCB_INPUT_DEVICE_ALL;
    }
    installed_[target] = modifiers_;
    const bool isGranted = xcb_input_xi_passive_grab_device_modifiers_length(reply.get()) == 0;
    if (target.device == XCB_INPUT_DEVICE_ALL) {
        return isGranted;
    }
    for (auto refused = xcb_input_xi_passive_grab_device_modifiers_iterator(reply.get()); refused.rem > 0;
         xcb_input_grab_modifier_info_next(&refused)) {
        log_.write(LogLevel::error, "input",
                   fmt::format("Another program holds key {} with modifiers {:#x} of keyboard {}", target.keyCode,
                               refused.data->modifiers, target.device));
    }
    return isGranted;
}

namespace {

constexpr std::uint32_t grabbedKeyEvents =
    XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE;

constexpr std::string_view activeWindowName = "_NET_ACTIVE_WINDOW";

X11ActiveGrab::KeysDown keysDownOf(const xcb_query_keymap_reply_t& reply) {
    constexpr std::size_t bitsPerByte = 8;
    X11ActiveGrab::KeysDown keys;
    for (std::size_t keyCode = 0; keyCode < keys.size(); ++keyCode) {
        keys[keyCode] = (static_cast<unsigned>(reply.keys[keyCode / bitsPerByte]) >> (keyCode % bitsPerByte) & 1U) != 0;
    }
    return keys;
}

bool isDown(const xcb_input_query_device_state_reply_t& state, std::uint32_t keyCode) {
    for (auto part = xcb_input_query_device_state_classes_iterator(&state); part.rem > 0;
         xcb_input_input_state_next(&part)) {
        if (part.data->class_id == XCB_INPUT_INPUT_CLASS_KEY) {
            const auto& keys = reinterpret_cast<const xcb_input_key_state_t&>(*part.data).keys;
            return (keys[keyCode / 8] >> keyCode % 8 & 1) != 0;
        }
    }
    return false;
}

}  // namespace

X11ActiveGrab::X11ActiveGrab(const X11Connection& connection, X11PassiveGrabs& grabs)
    : connection_(connection), grabs_(grabs) {
    const XcbReply<xcb_intern_atom_reply_t> atom(
        xcb_intern_atom_reply(connection.get(),
                              xcb_intern_atom(connection.get(), 0, static_cast<std::uint16_t>(activeWindowName.size()),
                                              activeWindowName.data()),
                              nullptr));
    if (atom != nullptr) {
        activeWindowProperty_ = atom->atom;
    }
}

std::optional<X11ActiveGrab::State> X11ActiveGrab::grab(std::optional<xcb_input_device_id_t> slave) {
    auto* const connection = connection_.get();
    const auto master = slave ? grabs_.masterOf(*slave) : grabs_.mainMaster();
    const auto grab = requestGrab(master);
    grabs_.remove();
    freedSlave_.reset();
    if (slave && freeSlave(*slave)) {
        freedSlave_ = slave;
    }
    // A trigger at another keyboard, or one that came before a session was opened from the menu, waits in the queue.
    freeGrabbedSlaves();
    repeatMissedReleases();
    // Asked for last: whatever happened until then is in the answer, whatever happens later comes as an event.
    const auto modifiers = xcb_xkb_get_state(connection, master);
    const auto keys = xcb_query_keymap(connection);
    const auto controls = xcb_xkb_get_controls(connection, master);
    const auto pointer = xcb_query_pointer(connection, connection_.root());
    const auto active = requestActiveWindow();
    const XcbReply<xcb_query_pointer_reply_t> pointerReply(xcb_query_pointer_reply(connection, pointer, nullptr));
    const XcbReply<xcb_xkb_get_state_reply_t> modifiersReply(xcb_xkb_get_state_reply(connection, modifiers, nullptr));
    const XcbReply<xcb_query_keymap_reply_t> keysReply(xcb_query_keymap_reply(connection, keys, nullptr));
    const XcbReply<xcb_xkb_get_controls_reply_t> controlsReply(
        xcb_xkb_get_controls_reply(connection, controls, nullptr));
    const auto activeWindow = collectActiveWindow(active);
    if (!isGranted(grab)) {
        return std::nullopt;
    }
    master_ = master;
    State state;
    state.activeWindow = activeWindow;
    if (modifiersReply != nullptr) {
        state.modifiers = modifiersReply->mods;
    }
    if (keysReply != nullptr) {
        state.keysDown = keysDownOf(*keysReply);
    }
    if (pointerReply != nullptr) {
        state.pointerX = static_cast<std::uint32_t>(pointerReply->root_x);
        state.pointerY = static_cast<std::uint32_t>(pointerReply->root_y);
    }
    if (controlsReply != nullptr && (controlsReply->enabledControls & XCB_XKB_BOOL_CTRL_REPEAT_KEYS) != 0) {
        state.repeatDelay = std::chrono::milliseconds(controlsReply->repeatDelay);
        state.repeatInterval = std::chrono::milliseconds(controlsReply->repeatInterval);
    }
    return state;
}

void X11ActiveGrab::ungrab() {
    if (!master_) {
        return;
    }
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, *master_);
    master_.reset();
}

void X11ActiveGrab::freeGrabbedSlaves() {
    while (!grabbedSlaves_.empty()) {
        freeSlave(grabbedSlaves_.begin()->first);
    }
}

bool X11ActiveGrab::freeSlave(xcb_input_device_id_t slave) {
    const auto grabbed = grabbedSlaves_.extract(slave);
    const bool isHeldBack = !grabbed.empty() && grabbed.mapped();
    if (isHeldBack) {
        // The server would play what it held back to the slave alone, and nobody listens there: the master misses it in
        // any case. A grab of the slave lets all of it come here.
        xcb_discard_reply(connection_.get(), requestGrab(slave).sequence);
    }
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, slave);
    return isHeldBack;
}

void X11ActiveGrab::noteMissedRelease(xcb_input_device_id_t slave, std::uint32_t keyCode) {
    missedReleases_.push_back({slave, keyCode});
}

/// What is repeated lets the key go for the master even where it has gone down again at the slave meanwhile, and the
/// master would never hear of that press. So it is looked up just before, and such a release is not repeated: for the
/// master the key has been down all the time, as it is now. The users are not kept from typing meanwhile: a server that
/// only listens to a client which is then stopped is lost.
void X11ActiveGrab::repeatMissedReleases() {
    const auto releases = std::exchange(missedReleases_, {});
    if (releases.empty()) {
        return;
    }
    auto* const connection = connection_.get();
    std::map<xcb_input_device_id_t, xcb_input_query_device_state_cookie_t> requests;
    for (const auto& release : releases) {
        if (!requests.contains(release.slave)) {
            requests[release.slave] =
                xcb_input_query_device_state(connection, static_cast<std::uint8_t>(release.slave));
        }
    }
    std::map<xcb_input_device_id_t, XcbReply<xcb_input_query_device_state_reply_t>> states;
    for (const auto& [slave, request] : requests) {
        states[slave].reset(xcb_input_query_device_state_reply(connection, request, nullptr));
    }
    for (const auto& release : releases) {
        const auto& state = states[release.slave];
        if (state == nullptr || !isDown(*state, release.keyCode)) {
            fakeKey(XCB_KEY_RELEASE, release.keyCode);
        }
    }
    // Whatever follows the end of this session, or the program's hearing of its trigger, comes after these.
    const XcbReply<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void X11ActiveGrab::releaseForMaster(std::uint32_t keyCode) {
    fakeKey(XCB_KEY_RELEASE, keyCode);
}

void X11ActiveGrab::typeForHolder(std::uint32_t keyCode) {
    // Released at once: a key that is down on the server's test keyboard would repeat there, whatever the user does.
    fakeKey(XCB_KEY_PRESS, keyCode);
    fakeKey(XCB_KEY_RELEASE, keyCode);
}

xcb_window_t X11ActiveGrab::activeWindow() const {
    return collectActiveWindow(requestActiveWindow());
}

xcb_get_property_cookie_t X11ActiveGrab::requestActiveWindow() const {
    return xcb_get_property(connection_.get(), 0, connection_.root(), activeWindowProperty_, XCB_ATOM_WINDOW, 0, 1);
}

xcb_window_t X11ActiveGrab::collectActiveWindow(xcb_get_property_cookie_t cookie) const {
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_.get(), cookie, nullptr));
    const bool isWindow = reply != nullptr && reply->type == XCB_ATOM_WINDOW && reply->format == 32 &&
                          xcb_get_property_value_length(reply.get()) >= static_cast<int>(sizeof(xcb_window_t));
    if (!isWindow) {
        return XCB_WINDOW_NONE;
    }
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

bool X11ActiveGrab::probe() {
    const auto master = grabs_.mainMaster();
    if (!isGranted(requestGrab(master))) {
        return false;
    }
    xcb_input_xi_ungrab_device(connection_.get(), XCB_CURRENT_TIME, master);
    return true;
}

xcb_input_xi_grab_device_cookie_t X11ActiveGrab::requestGrab(xcb_input_device_id_t device) const {
    return xcb_input_xi_grab_device(connection_.get(), connection_.root(), XCB_CURRENT_TIME, XCB_CURSOR_NONE, device,
                                    XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                    XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &grabbedKeyEvents);
}

bool X11ActiveGrab::isGranted(xcb_input_xi_grab_device_cookie_t cookie) const {
    const XcbReply<xcb_input_xi_grab_device_reply_t> reply(
        xcb_input_xi_grab_device_reply(connection_.get(), cookie, nullptr));
    return reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

void X11ActiveGrab::fakeKey(std::uint8_t type, std::uint32_t keyCode) {
    xcb_test_fake_input(connection_.get(), type, static_cast<std::uint8_t>(keyCode), XCB_CURRENT_TIME, XCB_WINDOW_NONE,
                        0, 0, 0);
}

}  // namespace ferrowyn
