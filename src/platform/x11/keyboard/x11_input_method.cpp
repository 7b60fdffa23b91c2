#include "platform/x11/keyboard/x11_input_method.h"

#include <poll.h>

#include <string_view>
#include <utility>

#include "core/text_encoding.h"
#include "platform/log.h"

namespace ferrowyn {

namespace {

constexpr const char* service = "org.fcitx.Fcitx5";
constexpr const char* factoryPath = "/org/freedesktop/portal/inputmethod";
constexpr const char* factoryInterface = "org.fcitx.Fcitx.InputMethod1";
constexpr const char* contextInterface = "org.fcitx.Fcitx.InputContext1";

constexpr const char* busService = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";

}  // namespace

X11InputMethod::X11InputMethod(std::string display, Log& log) : display_(std::move(display)), log_(log) {
    connect();
}

void X11InputMethod::connect() {
    sd_bus* bus = nullptr;
    // Does not wait for the bus; its replies are handled later.
    if (sd_bus_open_user(&bus) < 0) {
        return;
    }
    bus_.reset(bus);
    sd_bus_slot* slot = nullptr;
    // Only changes of this name, because other names change often and would wake the tap.
    const std::string ownerChanges =
        std::string("type='signal',sender='") + busService + "',member='NameOwnerChanged',arg0='" + service + "'";
    if (sd_bus_add_match_async(bus, &slot, ownerChanges.c_str(), onOwner, nullptr, this) >= 0) {
        ownerMatch_.reset(slot);
    }
    slot = nullptr;
    if (sd_bus_call_method_async(bus, &slot, busService, busPath, busService, "NameHasOwner", onHasOwner, this, "s",
                                 service) >= 0) {
        hasOwner_.reset(slot);
    }
}

int X11InputMethod::descriptor() const {
    return bus_ != nullptr ? sd_bus_get_fd(bus_.get()) : -1;
}

short X11InputMethod::pollEvents() const {
    const int events = bus_ != nullptr ? sd_bus_get_events(bus_.get()) : 0;
    return static_cast<short>(events > 0 ? events : POLLIN);
}

std::optional<X11InputMethod::Clock::time_point> X11InputMethod::deadline() const {
    std::uint64_t microseconds = 0;
    if (bus_ == nullptr || sd_bus_get_timeout(bus_.get(), &microseconds) < 0 || microseconds == UINT64_MAX) {
        return std::nullopt;
    }
    // Both clocks count from the start of the machine.
    return Clock::time_point(std::chrono::microseconds(microseconds));
}

void X11InputMethod::process() {
    int done = 1;
    while (bus_ != nullptr && done > 0) {
        done = sd_bus_process(bus_.get(), nullptr);
        if (done < 0) {
            lost();
            ownerMatch_.reset();
            hasOwner_.reset();
            bus_.reset();
        }
    }
}

void X11InputMethod::reset() {
    if (!context_.empty()) {
        send(contextCall("Reset"));
    }
    question_.reset();
    isAsking_ = false;
    isTooSlow_ = false;
    text_.clear();
    if (bus_ == nullptr) {
        // It may be there again, or have come since the start.
        connect();
    }
}

bool X11InputMethod::ask(const Key& key, const std::optional<X11PixelRect>& panel) {
    if (context_.empty() || isTooSlow_) {
        return false;
    }
    if (panel) {
        const auto place = contextCall("SetCursorRect");
        sd_bus_message_append(place.get(), "iiii", panel->x, panel->y, panel->width, panel->height);
        send(place);
    }
    const auto question = contextCall("ProcessKeyEvent");
    sd_bus_message_append(question.get(), "uuubu", key.symbol, key.keyCode, key.modifiers, 0, key.time);
    sd_bus_slot* slot = nullptr;
    const auto timeout = std::chrono::duration_cast<std::chrono::microseconds>(patience).count();
    if (sd_bus_call_async(bus_.get(), &slot, question.get(), onAnswer, this, static_cast<std::uint64_t>(timeout)) < 0) {
        return false;
    }
    question_.reset(slot);
    isAsking_ = true;
    return true;
}

std::optional<std::u16string> X11InputMethod::takeText() {
    return text_.empty() ? std::nullopt : std::optional(std::exchange(text_, {}));
}

void X11InputMethod::appeared() {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &raw, service, factoryPath, factoryInterface, "CreateInputContext") <
        0) {
        return;
    }
    const Message call(raw);
    const std::string display = "x11:" + display_;
    sd_bus_message_append(raw, "a(ss)", 2, "program", "ferrowyn", "display", display.c_str());
    sd_bus_message_set_auto_start(raw, 0);
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(bus_.get(), &slot, raw, onContext, this, 0) >= 0) {
        creation_.reset(slot);
    }
}

void X11InputMethod::lost() {
    creation_.reset();
    textMatch_.reset();
    question_.reset();
    context_.clear();
    // The waiting key is handled as if the input method had not used it.
    isAsking_ = false;
    hasTakenKey_ = false;
}

X11InputMethod::Message X11InputMethod::contextCall(const char* member) const {
    sd_bus_message* call = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &call, service, context_.c_str(), contextInterface, member) >= 0) {
        sd_bus_message_set_auto_start(call, 0);
    }
    return Message(call);
}

void X11InputMethod::send(const Message& message) const {
    if (message != nullptr) {
        sd_bus_message_set_expect_reply(message.get(), 0);
        sd_bus_send(bus_.get(), message.get(), nullptr);
    }
}

int X11InputMethod::onOwner(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* name = nullptr;
    const char* before = nullptr;
    const char* after = nullptr;
    if (sd_bus_message_read(message, "sss", &name, &before, &after) < 0) {
        return 0;
    }
    auto& method = *static_cast<X11InputMethod*>(self);
    method.lost();
    if (!std::string_view(after).empty()) {
        method.appeared();
    }
    return 0;
}

int X11InputMethod::onHasOwner(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    int isThere = 0;
    auto& method = *static_cast<X11InputMethod*>(self);
    if (sd_bus_message_is_method_error(message, nullptr) == 0 && sd_bus_message_read(message, "b", &isThere) > 0 &&
        isThere != 0 && method.creation_ == nullptr) {
        method.appeared();
    }
    return 0;
}

int X11InputMethod::onContext(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* path = nullptr;
    if (sd_bus_message_is_method_error(message, nullptr) != 0 || sd_bus_message_read(message, "o", &path) < 0) {
        return 0;
    }
    auto& method = *static_cast<X11InputMethod*>(self);
    method.context_ = path;
    sd_bus_slot* slot = nullptr;
    if (sd_bus_match_signal_async(method.bus_.get(), &slot, sd_bus_message_get_sender(message), path, contextInterface,
                                  "CommitString", onText, nullptr, self) >= 0) {
        method.textMatch_.reset(slot);
    }
    method.log_.write(LogLevel::debug, "input", "The input method fcitx5 is asked about typed keys");
    return 0;
}

int X11InputMethod::onText(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    const char* typed = nullptr;
    if (sd_bus_message_read(message, "s", &typed) > 0) {
        static_cast<X11InputMethod*>(self)->text_ += text::utf16FromUtf8(typed);
    }
    return 0;
}

int X11InputMethod::onAnswer(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
    auto& method = *static_cast<X11InputMethod*>(self);
    int isTaken = 0;
    method.isTooSlow_ =
        sd_bus_message_is_method_error(message, nullptr) != 0 || sd_bus_message_read(message, "b", &isTaken) < 0;
    method.hasTakenKey_ = !method.isTooSlow_ && isTaken != 0;
    method.isAsking_ = false;
    return 0;
}

}  // namespace ferrowyn
