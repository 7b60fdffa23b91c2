// The guard process of a keyboard tap; see `X11KeyboardGuard`. It gets the tap's answers and the state of the
// modifiers, but no keys. While no trigger's modifier is down and no session is open, it sleeps.

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "platform/x11/keyboard/x11_keyboard_guard_message.h"
#include "platform/x11/xcb_reply.h"
#include "platform/x11/xcb_xkb.h"

namespace ferrowyn {

namespace {

using Message = X11KeyboardGuardMessage;

/// Milliseconds between questions, and how many such waits may pass without an answer. Waits are counted instead of
/// reading the clock, so that a machine that was suspended for a while is not taken for a tap that does not answer.
constexpr int questionInterval = 100;
constexpr int patienceInQuestions = 3;

/// Milliseconds, and how many of these a server has to notice that a client is gone.
constexpr int turnLength = 10;
constexpr int mostTurns = 100;

constexpr std::uint8_t responseTypeMask = 0x7F;

class KeyboardGuard {
public:
    KeyboardGuard(xcb_connection_t* connection, xcb_pixmap_t handle) : connection_(connection), handle_(handle) {}

    [[nodiscard]] bool listenToModifiers() {
        const auto* const extension = xcb_get_extension_data(connection_, &xcb_xkb_id);
        const XcbReply<xcb_xkb_use_extension_reply_t> used(
            xcb_xkb_use_extension_reply(connection_, xcb_xkb_use_extension(connection_, 1, 0), nullptr));
        const XcbReply<xcb_input_xi_query_version_reply_t> input(
            xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
        if (extension == nullptr || used == nullptr || used->supported == 0 || input == nullptr) {
            return false;
        }
        xkbEventBase_ = extension->first_event;
        xcb_xkb_select_events_details_t details{};
        details.affectState = XCB_XKB_STATE_PART_MODIFIER_STATE;
        details.stateDetails = XCB_XKB_STATE_PART_MODIFIER_STATE;
        xcb_xkb_select_events_aux(connection_, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_EVENT_TYPE_STATE_NOTIFY, 0, 0, 0, 0,
                                  &details);
        const XcbReply<xcb_xkb_get_state_reply_t> state(
            xcb_xkb_get_state_reply(connection_, xcb_xkb_get_state(connection_, XCB_XKB_ID_USE_CORE_KBD), nullptr));
        modifiers_ = state != nullptr ? state->mods : 0;
        return true;
    }

    /// Returns when the tap has ended, when this has closed its connection, or when the server has ended.
    void run() {
        bool isAnswering = true;
        while (isAnswering && readTap() && readServer()) {
            const bool mayHaveKeyboard = isHeld_ || (modifiers_ & freezingModifiers_) != 0;
            if (mayHaveKeyboard && unansweredWaits_ == 0 && !isPausing_) {
                ask();
            }
            const bool hasWaited = wait(unansweredWaits_ > 0 || isPausing_ ? questionInterval : -1);
            isPausing_ = isPausing_ && !hasWaited;
            if (hasWaited && unansweredWaits_ > 0 && unansweredWaits_++ >= patienceInQuestions) {
                isAnswering = answersAfterAll();
            }
        }
        if (!isAnswering) {
            xcb_kill_client(connection_, handle_);
        }
        if (readServer()) {
            waitUntilTheServerLetGo();
            releaseLostKeys();
        }
    }

private:
    /// While another client has grabbed the server, the tap may wait for a reply and cannot answer. Waits for the
    /// server and checks again.
    [[nodiscard]] bool answersAfterAll() {
        const auto start = std::chrono::steady_clock::now();
        synchronize();
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(questionInterval)) {
            // The tap could not run before this moment, so its waits are counted again from here.
            unansweredWaits_ = 1;
            return true;
        }
        return !readTap() || unansweredWaits_ == 0;
    }
    void ask() {
        const Message question{Message::Kind::question, 0};
        if (send(x11KeyboardGuardSocket, &question, sizeof question, MSG_NOSIGNAL) == sizeof question) {
            unansweredWaits_ = 1;
        }
    }
    /// True when the time has passed without anything to read.
    [[nodiscard]] bool wait(int milliseconds) const {
        std::array<pollfd, 2> descriptors{
            {{x11KeyboardGuardSocket, POLLIN, 0}, {xcb_get_file_descriptor(connection_), POLLIN, 0}}};
        return poll(descriptors.data(), descriptors.size(), milliseconds) == 0;
    }
    /// False when the tap has ended.
    [[nodiscard]] bool readTap() {
        Message message;
        while (true) {
            const auto size = recv(x11KeyboardGuardSocket, &message, sizeof message, MSG_DONTWAIT);
            if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
                return true;
            }
            if (size != sizeof message) {
                return false;
            }
            read(message);
        }
    }
    void read(const Message& message) {
        switch (message.kind) {
            case Message::Kind::answer:
                unansweredWaits_ = 0;
                isPausing_ = true;
                break;
            case Message::Kind::freezingModifiers:
                freezingModifiers_ = message.value;
                break;
            case Message::Kind::held:
            case Message::Kind::free:
                isHeld_ = message.kind == Message::Kind::held;
                break;
            case Message::Kind::question:
                break;
        }
    }
    /// False when the server has ended.
    [[nodiscard]] bool readServer() {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            if ((event->response_type & responseTypeMask) == xkbEventBase_ && event->pad0 == XCB_XKB_STATE_NOTIFY) {
                modifiers_ = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(*event).mods;
            }
        }
        return xcb_connection_has_error(connection_) == 0;
    }
    void synchronize() const {
        const XcbReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    /// Waits until the server has removed the handle of a killed program, which takes a moment. The guard does not
    /// close the connection itself then, because the XID may soon belong to another client.
    void waitUntilTheServerLetGo() const {
        for (int turn = 0; turn < mostTurns && hasHandle(); ++turn) {
            poll(nullptr, 0, turnLength);
        }
    }
    [[nodiscard]] bool hasHandle() const {
        const XcbReply<xcb_get_geometry_reply_t> reply(
            xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, handle_), nullptr));
        return reply != nullptr;
    }
    /// Sends lost releases: keys that went up while the keyboard was frozen are still down for all other clients.
    void releaseLostKeys() const {
        const auto down = keysDownAtKeyboards();
        const XcbReply<xcb_query_keymap_reply_t> map(
            xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
        for (unsigned keyCode = 0; map != nullptr && keyCode < 256; ++keyCode) {
            const auto bit = 1U << keyCode % 8;
            if ((map->keys[keyCode / 8] & bit) != 0 && (down[keyCode / 8] & bit) == 0) {
                xcb_test_fake_input(connection_, XCB_KEY_RELEASE, static_cast<std::uint8_t>(keyCode), XCB_CURRENT_TIME,
                                    XCB_WINDOW_NONE, 0, 0, 0);
            }
        }
        synchronize();
    }
    [[nodiscard]] std::array<unsigned, 32> keysDownAtKeyboards() const {
        std::array<unsigned, 32> down{};
        const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
            connection_, xcb_input_xi_query_device(connection_, XCB_INPUT_DEVICE_ALL), nullptr));
        for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get());
             devices != nullptr && device.rem > 0; xcb_input_xi_device_info_next(&device)) {
            if (device.data->type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
                device.data->type != XCB_INPUT_DEVICE_TYPE_FLOATING_SLAVE) {
                continue;
            }
            const auto request =
                xcb_input_query_device_state(connection_, static_cast<std::uint8_t>(device.data->deviceid));
            const XcbReply<xcb_input_query_device_state_reply_t> state(
                xcb_input_query_device_state_reply(connection_, request, nullptr));
            if (state != nullptr) {
                addKeysDown(*state, down);
            }
        }
        return down;
    }
    static void addKeysDown(const xcb_input_query_device_state_reply_t& state, std::array<unsigned, 32>& down) {
        for (auto part = xcb_input_query_device_state_classes_iterator(&state); part.rem > 0;
             xcb_input_input_state_next(&part)) {
            if (part.data->class_id == XCB_INPUT_INPUT_CLASS_KEY) {
                const auto& keys = reinterpret_cast<const xcb_input_key_state_t&>(*part.data).keys;
                for (std::size_t index = 0; index < down.size(); ++index) {
                    down.at(index) |= keys[index];
                }
            }
        }
    }

    xcb_connection_t* connection_;
    xcb_pixmap_t handle_;
    std::uint8_t xkbEventBase_ = 0;
    std::uint32_t modifiers_ = 0;
    std::uint32_t freezingModifiers_ = 0;
    bool isHeld_ = false;
    /// How many waits have begun since the question that is not answered yet.
    int unansweredWaits_ = 0;
    /// A question was just answered; the guard pauses before the next one.
    bool isPausing_ = false;
};

}  // namespace

}  // namespace ferrowyn

int main(int argumentCount, char** arguments) {
    if (argumentCount < 2) {
        return EXIT_FAILURE;
    }
    fcntl(ferrowyn::x11KeyboardGuardSocket, F_SETFD, FD_CLOEXEC);
    auto* const connection = xcb_connect(argumentCount > 2 ? arguments[2] : nullptr, nullptr);
    ferrowyn::KeyboardGuard guard(connection, static_cast<xcb_pixmap_t>(std::strtoul(arguments[1], nullptr, 10)));
    if (xcb_connection_has_error(connection) == 0 && guard.listenToModifiers()) {
        guard.run();
    }
    xcb_disconnect(connection);
    return EXIT_SUCCESS;
}
