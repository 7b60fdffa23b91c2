#include "tests/macos/fake/fake_keyboard.h"

#include <algorithm>
#include <chrono>

#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/fake/fake_system.h"

namespace ferrowyn::fake {

namespace {

/// Longer than any thread of a loaded machine is kept waiting.
constexpr std::chrono::seconds patience{20};

}  // namespace

MachPort::MachPort(CGEventTapCallBack callback, void* userInfo)
    : Object("CFMachPort"), callback_(callback), userInfo_(userInfo) {}

MachPort::~MachPort() {
    Keyboard::shared().remove(*this);
    if (isValid_) {
        Objects::shared().fault("a tap's port was released and never invalidated");
    }
}

void MachPort::setEnabled(bool enabled) {
    const std::scoped_lock lock(lock_);
    isEnabled_ = enabled && isValid_;
}

bool MachPort::isEnabled() const {
    const std::scoped_lock lock(lock_);
    return isEnabled_;
}

void MachPort::invalidate() {
    const std::scoped_lock lock(lock_);
    isValid_ = false;
    isEnabled_ = false;
    questions_.clear();
    answered_.notify_all();
}

void MachPort::takeAway() {
    {
        const std::scoped_lock lock(lock_);
        isTakenAway_ = true;
    }
    invalidate();
}

bool MachPort::isTakenAway() const {
    const std::scoped_lock lock(lock_);
    return isTakenAway_;
}

bool MachPort::isValid() const {
    const std::scoped_lock lock(lock_);
    return isValid_;
}

std::optional<CGEventRef> MachPort::ask(CGEventType type, CGEventRef event) {
    const auto question = std::make_shared<Question>(Question{type, event, std::nullopt});
    {
        const std::scoped_lock lock(lock_);
        questions_.push_back(question);
    }
    RunLoop::wakeAll();
    std::unique_lock lock(lock_);
    answered_.wait_for(lock, patience, [&] { return question->answer.has_value() || !isValid_; });
    std::erase(questions_, question);
    return question->answer;
}

bool MachPort::serveNext() {
    std::shared_ptr<Question> question;
    {
        const std::scoped_lock lock(lock_);
        if (questions_.empty()) {
            return false;
        }
        question = questions_.front();
        questions_.pop_front();
    }
    const auto answer = callback_(proxy_, question->type, question->event, userInfo_);
    const std::scoped_lock lock(lock_);
    question->answer = answer;
    answered_.notify_all();
    return true;
}

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
    const std::scoped_lock lock(lock_);
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
        const std::scoped_lock lock(lock_);
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
        const std::scoped_lock lock(lock_);
        port = Held<MachPort>::retaining(port_);
    }
    port->setEnabled(false);
    // No event comes with it.
    if (!port->ask(reason, nullptr)) {
        Objects::shared().fault("nobody was there to hear that the tap is disabled");
    }
}

void Keyboard::takePortAway() {
    {
        const std::scoped_lock lock(lock_);
        port_->takeAway();
    }
    RunLoop::wakeAll();
}

bool Keyboard::isTapEnabled() const {
    const std::scoped_lock lock(lock_);
    return port_ != nullptr && port_->isEnabled();
}

bool Keyboard::waitUntilTapIsEnabled() const {
    std::unique_lock lock(lock_);
    return changed_.wait_for(lock, std::chrono::seconds(20), [this] { return port_ != nullptr && port_->isEnabled(); });
}

std::optional<Keyboard::TapRequest> Keyboard::tapRequest() const {
    const std::scoped_lock lock(lock_);
    return request_;
}

bool Keyboard::hasTap() const {
    const std::scoped_lock lock(lock_);
    return port_ != nullptr && port_->isValid();
}

void Keyboard::add(MachPort& port, const TapRequest& request) {
    const std::scoped_lock lock(lock_);
    port_ = &port;
    request_ = request;
}

void Keyboard::remove(const MachPort& port) {
    const std::scoped_lock lock(lock_);
    if (port_ == &port) {
        port_ = nullptr;
    }
}

void Keyboard::setEnabled(MachPort& port, bool enabled) {
    const std::scoped_lock lock(lock_);
    port.setEnabled(enabled);
    changed_.notify_all();
}

void Keyboard::translate() {
    const std::scoped_lock lock(lock_);
    if (!std::exchange(hasTranslated_, true) && std::this_thread::get_id() != mainThread_) {
        Objects::shared().fault("the first text of a key is asked for on another thread than the main one");
    }
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

CFRunLoopSourceRef CFMachPortCreateRunLoopSource(CFAllocatorRef, CFMachPortRef port, CFIndex) {
    auto* const found = Objects::shared().find<MachPort>(port, "CFMachPortCreateRunLoopSource");
    if (found == nullptr || Keyboard::shared().refusesSources) {
        return nullptr;
    }
    // The source keeps its port, as a copied reference, for as long as it lives.
    const auto held = std::make_shared<Held<MachPort>>(Held<MachPort>::retaining(found));
    auto* const source = new RunLoopSource("the tap", [held] { return held->get()->serveNext(); });
    source->isValid = [held] { return held->get()->isValid(); };
    return source->as<CFRunLoopSourceRef>();
}

void CFMachPortInvalidate(CFMachPortRef port) {
    if (auto* const found = Objects::shared().find<MachPort>(port, "CFMachPortInvalidate")) {
        RunLoop::note("invalidate the tap's port");
        found->invalidate();
        RunLoop::wakeAll();
    }
}

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
        if (!port->isValid() && !port->isTakenAway()) {
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
