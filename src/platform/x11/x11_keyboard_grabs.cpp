#include "platform/x11/x11_keyboard_grabs.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

// The header of xcb's XKB names a field with a word that C++ reserves.
#define explicit explicitField
#include <xcb/xkb.h>
#undef explicit

#include "platform/log.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

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

void X11KeyboardGrabs::setKeys(std::vector<std::uint32_t> keyCodes, std::vector<std::uint32_t> modifiers) {
    std::sort(modifiers.begin(), modifiers.end());
    keyCodes_ = std::move(keyCodes);
    modifiers_ = std::move(modifiers);
}

void X11KeyboardGrabs::readDevices() {
    auto* const connection = connection_.get();
    const XcbReply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection, xcb_input_xi_query_device(connection, XCB_INPUT_DEVICE_ALL), nullptr));
    if (reply == nullptr) {
        return;
    }
    masters_.clear();
    masterKeyboards_.clear();
    testKeyboards_.clear();
    for (auto device = xcb_input_xi_query_device_infos_iterator(reply.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) {
            masters_[device.data->deviceid] = device.data->attachment;
            const std::string_view name(xcb_input_xi_device_info_name(device.data), device.data->name_len);
            if (name.find("XTEST") != std::string_view::npos) {
                testKeyboards_.insert(device.data->deviceid);
            }
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

std::set<X11KeyboardGrabs::Target> X11KeyboardGrabs::wantedTargets() const {
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

void X11KeyboardGrabs::install() {
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

bool X11KeyboardGrabs::heldKeysBackAt(std::uint32_t sequence) {
    while (wayChanges_.size() > 1 && !isBefore(sequence, wayChanges_[1].sequence)) {
        wayChanges_.pop_front();
    }
    return !wayChanges_.empty() && wayChanges_.front().holdsKeysBack;
}

void X11KeyboardGrabs::remove() {
    for (const auto& [target, modifiers] : installed_) {
        ungrab(target, modifiers);
    }
    installed_.clear();
}

void X11KeyboardGrabs::watchModifiers(bool isWatching) {
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

xcb_input_device_id_t X11KeyboardGrabs::masterOf(xcb_input_device_id_t slave) const {
    const auto found = masters_.find(slave);
    return found != masters_.end() ? found->second : mainMaster_;
}

void X11KeyboardGrabs::ungrab(const Target& target, const std::vector<std::uint32_t>& modifiers) {
    xcb_input_xi_passive_ungrab_device(connection_.get(), connection_.root(), target.keyCode, target.device,
                                       static_cast<std::uint16_t>(modifiers.size()), XCB_INPUT_GRAB_TYPE_KEYCODE,
                                       modifiers.data());
}

xcb_input_xi_passive_grab_device_cookie_t X11KeyboardGrabs::requestGrab(
    const Target& target, const std::vector<std::uint32_t>& modifiers) const {
    // A grab on all devices is none of a keyboard to the server, which takes the mode for paired devices for it.
    const auto mode =
        target.device == XCB_INPUT_DEVICE_ALL ? XCB_INPUT_GRAB_MODE_22_SYNC : XCB_INPUT_GRAB_MODE_22_ASYNC;
    return xcb_input_xi_passive_grab_device(connection_.get(), XCB_CURRENT_TIME, connection_.root(), XCB_CURSOR_NONE,
                                            target.keyCode, target.device, static_cast<std::uint16_t>(modifiers.size()),
                                            1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, mode,
                                            XCB_INPUT_GRAB_OWNER_NO_OWNER, &keyEvents, modifiers.data());
}

bool X11KeyboardGrabs::readAnswer(const Target& target, xcb_input_xi_passive_grab_device_cookie_t cookie) {
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

}  // namespace ferrowyn
