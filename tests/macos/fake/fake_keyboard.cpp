#include "tests/macos/fake/fake_keyboard.h"

#include <algorithm>
#include <chrono>

#include "tests/macos/fake/fake_mach_port.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/fake/fake_system.h"

namespace ferrowyn::fake {

namespace {

constexpr CGEventFlags modifiers =
    kCGEventFlagMaskShift | kCGEventFlagMaskControl | kCGEventFlagMaskAlternate | kCGEventFlagMaskCommand;

/// A keyboard event.
class Event final : public Object {
public:
    explicit Event(const Keyboard::Key& key) : Object("CGEvent"), key_(key) {}
    Keyboard::Key& key() { return key_; }

private:
    Keyboard::Key key_;
};

}  // namespace

Keyboard& Keyboard::shared() {
    static auto* const keyboard = new Keyboard;
    return *keyboard;
}

void Keyboard::reset() {
    const std::lock_guard lock(lock_);
    refusesTaps = false;
    refusesSources = false;
    refusesCopies = false;
    refusesEvents = false;
    layout.clear();
    request_.reset();
    mainThread_ = std::this_thread::get_id();
    hasTranslated_ = false;
}

Keyboard::Outcome Keyboard::press(const Key& key) {
    Held<MachPort> port;
    {
        const std::lock_guard lock(lock_);
        if (port_ == nullptr || !port_->isEnabled() || (request_->mask & CGEventMaskBit(key.type)) == 0) {
            return Outcome::reachedApplication;
        }
        port = Held<MachPort>::retaining(port_);
    }
    const Held<Event> event(new Event(key));
    const auto answer = port->ask(key.type, event.get()->as<CGEventRef>());
    if (!answer) {
        return Outcome::stuck;
    }
    if (*answer == nullptr) {
        return Outcome::swallowed;
    }
    return *answer == event.get()->as<CGEventRef>() ? Outcome::reachedApplication : Outcome::replaced;
}

void Keyboard::disableTap(CGEventType reason) {
    Held<MachPort> port;
    {
        const std::lock_guard lock(lock_);
        port = Held<MachPort>::retaining(port_);
    }
    port->setEnabled(false);
    // No event comes with it.
    if (!port->ask(reason, nullptr)) {
        Objects::shared().fault("nobody was there to hear that the tap is disabled");
    }
}

bool Keyboard::isTapEnabled() const {
    const std::lock_guard lock(lock_);
    return port_ != nullptr && port_->isEnabled();
}

bool Keyboard::waitUntilTapIsEnabled() const {
    std::unique_lock lock(lock_);
    return changed_.wait_for(lock, std::chrono::seconds(20), [this] { return port_ != nullptr && port_->isEnabled(); });
}

std::optional<Keyboard::TapRequest> Keyboard::tapRequest() const {
    const std::lock_guard lock(lock_);
    return request_;
}

bool Keyboard::hasTap() const {
    const std::lock_guard lock(lock_);
    return port_ != nullptr && port_->isValid();
}

void Keyboard::add(MachPort& port, const TapRequest& request) {
    const std::lock_guard lock(lock_);
    port_ = &port;
    request_ = request;
}

void Keyboard::remove(const MachPort& port) {
    const std::lock_guard lock(lock_);
    if (port_ == &port) {
        port_ = nullptr;
    }
}

void Keyboard::setEnabled(MachPort& port, bool enabled) {
    const std::lock_guard lock(lock_);
    port.setEnabled(enabled);
    changed_.notify_all();
}

void Keyboard::translate() {
    const std::lock_guard lock(lock_);
    if (!std::exchange(hasTranslated_, true) && std::this_thread::get_id() != mainThread_) {
        Objects::shared().fault("the first text of a key is asked for on another thread than the main one");
    }
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

namespace {

Event* find(CGEventRef event, const char* user) {
    return Objects::shared().find<Event>(event, user);
}

}  // namespace

CFMachPortRef CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                               CGEventMask eventsOfInterest, CGEventTapCallBack callback, void* userInfo) {
    if (Keyboard::shared().refusesTaps || !System::shared().isTrusted) {
        return nullptr;
    }
    auto* const port = new MachPort(callback, userInfo);
    Keyboard::shared().add(*port, {tap, place, options, eventsOfInterest});
    return port->as<CFMachPortRef>();
}

void CGEventTapEnable(CFMachPortRef tap, bool enable) {
    if (auto* const port = Objects::shared().find<MachPort>(tap, "CGEventTapEnable")) {
        if (!port->isValid()) {
            Objects::shared().fault("CGEventTapEnable of an invalidated tap");
        }
        RunLoop::note(enable ? "enable the tap" : "disable the tap");
        Keyboard::shared().setEnabled(*port, enable);
    }
}

bool CGEventTapIsEnabled(CFMachPortRef tap) {
    const auto* const port = Objects::shared().find<MachPort>(tap, "CGEventTapIsEnabled");
    return port != nullptr && port->isEnabled();
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey, bool keyDown) {
    static_cast<void>(source);
    if (Keyboard::shared().refusesEvents) {
        return nullptr;
    }
    return (new Event({.type = keyDown ? kCGEventKeyDown : kCGEventKeyUp, .keyCode = virtualKey}))->as<CGEventRef>();
}

CGEventRef CGEventCreateCopy(CGEventRef event) {
    auto* const found = find(event, "CGEventCreateCopy");
    if (found == nullptr || Keyboard::shared().refusesCopies) {
        return nullptr;
    }
    return (new Event(found->key()))->as<CGEventRef>();
}

CGEventFlags CGEventGetFlags(CGEventRef event) {
    auto* const found = find(event, "CGEventGetFlags");
    return found != nullptr ? found->key().flags : 0;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
    if (auto* const found = find(event, "CGEventSetFlags")) {
        found->key().flags = flags;
    }
}

int64_t CGEventGetIntegerValueField(CGEventRef event, CGEventField field) {
    auto* const found = find(event, "CGEventGetIntegerValueField");
    return found != nullptr && field == kCGKeyboardEventKeycode ? found->key().keyCode : 0;
}

void CGEventKeyboardGetUnicodeString(CGEventRef event, UniCharCount maxStringLength, UniCharCount* actualStringLength,
                                     UniChar* unicodeString) {
    auto* const found = find(event, "CGEventKeyboardGetUnicodeString");
    if (found == nullptr) {
        return;
    }
    Keyboard::shared().translate();
    const auto& layout = Keyboard::shared().layout;
    const auto typed = layout.find({found->key().keyCode, found->key().flags & modifiers});
    const std::u16string text = typed != layout.end() ? typed->second : std::u16string();
    if (unicodeString != nullptr) {
        std::copy_n(text.begin(), std::min<std::size_t>(text.size(), maxStringLength), unicodeString);
    }
    if (actualStringLength != nullptr) {
        *actualStringLength = text.size();
    }
}
