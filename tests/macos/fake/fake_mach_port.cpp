#include "tests/macos/fake/fake_mach_port.h"

#include <chrono>

#include "tests/macos/fake/fake_keyboard.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"

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
    const std::lock_guard lock(lock_);
    isEnabled_ = enabled && isValid_;
}

bool MachPort::isEnabled() const {
    const std::lock_guard lock(lock_);
    return isEnabled_;
}

void MachPort::invalidate() {
    const std::lock_guard lock(lock_);
    isValid_ = false;
    isEnabled_ = false;
    questions_.clear();
    answered_.notify_all();
}

bool MachPort::isValid() const {
    const std::lock_guard lock(lock_);
    return isValid_;
}

std::optional<CGEventRef> MachPort::ask(CGEventType type, CGEventRef event) {
    const auto question = std::make_shared<Question>(Question{type, event, std::nullopt});
    {
        const std::lock_guard lock(lock_);
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
        const std::lock_guard lock(lock_);
        if (questions_.empty()) {
            return false;
        }
        question = questions_.front();
        questions_.pop_front();
    }
    const auto answer = callback_(proxy_, question->type, question->event, userInfo_);
    const std::lock_guard lock(lock_);
    question->answer = answer;
    answered_.notify_all();
    return true;
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
