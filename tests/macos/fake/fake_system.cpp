#include "tests/macos/fake/fake_system.h"

#include <Carbon/Carbon.h>
#include <HIServices/HIServices.h>
#include <pthread.h>

#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_keyboard.h"
#include "tests/macos/fake/fake_run_loop.h"

namespace ferrowyn::fake {

System& System::shared() {
    static auto* const system = new System;
    return *system;
}

void System::reset() {
    const std::scoped_lock lock(lock_);
    isTrusted = true;
    isSecureInputEnabled = false;
    promptCount = 0;
    holdsThreads_ = false;
    threads_.clear();
}

void System::holdNewThreads() {
    const std::scoped_lock lock(lock_);
    holdsThreads_ = true;
}

void System::letThreadsGo() {
    const std::scoped_lock lock(lock_);
    holdsThreads_ = false;
    letGo_.notify_all();
}

std::vector<System::Thread> System::threads() const {
    const std::scoped_lock lock(lock_);
    return threads_;
}

void System::nameThread(const std::string& name) {
    std::unique_lock lock(lock_);
    threads_.push_back({name});
    letGo_.wait(lock, [this] { return !holdsThreads_; });
}

void System::setQualityOfService(unsigned qualityOfService) {
    const std::scoped_lock lock(lock_);
    threads_.back().qualityOfService = qualityOfService;
}

WindowServer& WindowServer::shared() {
    static WindowServer server;
    return server;
}

void resetSystem() {
    Accessibility::shared().reset();
    WindowServer::shared().reset();
    Keyboard::shared().reset();
    System::shared().reset();
    static_cast<void>(Objects::shared().takeFaults());
    static_cast<void>(RunLoop::main().takeJournal());
    static_cast<void>(RunLoop::main().takeRuns());
}

std::vector<std::string> takeComplaints() {
    auto complaints = Objects::shared().takeFaults();
    if (Objects::shared().liveCount() > 0) {
        complaints.push_back(Objects::shared().describeLive());
    }
    if (RunLoop::main().hasSources()) {
        complaints.emplace_back("the main loop has a source");
    }
    return complaints;
}

ElementId addWindow(Pid pid, WindowId number, const std::string& title, const Rect& frame) {
    WindowServer::shared().windows.push_back({.keys = {{"kCGWindowNumber", std::int64_t{number}},
                                                       {"kCGWindowOwnerPID", std::int64_t{pid}},
                                                       {"kCGWindowOwnerName", title},
                                                       {"kCGWindowLayer", std::int64_t{0}},
                                                       {"kCGWindowAlpha", 1.0},
                                                       {"kCGWindowIsOnscreen", true},
                                                       {"kCGWindowBounds", frame}}});
    return Accessibility::shared().addWindow(pid, {.attributes = {{"AXSubrole", std::string("AXStandardWindow")},
                                                                  {"AXTitle", title},
                                                                  {"AXMinimized", false},
                                                                  {"AXMain", false},
                                                                  {"AXFocused", false},
                                                                  {"AXPosition", Point{frame.x, frame.y}},
                                                                  {"AXSize", Size{frame.width, frame.height}}},
                                                   .windowNumber = number});
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

#define CONSTANT(_name) const CFStringRef _name = constantString(#_name)
CONSTANT(kCGWindowAlpha);
CONSTANT(kCGWindowBounds);
CONSTANT(kCGWindowIsOnscreen);
CONSTANT(kCGWindowLayer);
CONSTANT(kCGWindowNumber);
CONSTANT(kCGWindowOwnerName);
CONSTANT(kCGWindowOwnerPID);
CONSTANT(kAXTrustedCheckOptionPrompt);

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow) {
    auto& server = WindowServer::shared();
    server.options.push_back(option);
    if (relativeToWindow != kCGNullWindowID) {
        Objects::shared().fault("CGWindowListCopyWindowInfo relative to a window");
    }
    if (server.isSilent || server.answersWithText) {
        return server.isSilent ? nullptr : static_cast<CFArrayRef>(copy(std::string("no list")));
    }
    const auto held = [](CFTypeRef owned) { return Held<const Object>(static_cast<const Object*>(owned)); };
    std::vector<Held<const Object>> list;
    for (const auto& window : server.windows) {
        const bool isExcluded = ((option & kCGWindowListExcludeDesktopElements) != 0 && window.isDesktopElement) ||
                                ((option & kCGWindowListOptionOnScreenOnly) != 0 && !window.isOnActiveSpace);
        if (const auto found = server.intruders.find(list.size()); found != server.intruders.end()) {
            list.push_back(held(copy(found->second)));
        }
        if (!isExcluded) {
            std::map<std::string, Held<const Object>> entries;
            for (const auto& [key, value] : window.keys) {
                entries.emplace(key, held(copy(value)));
            }
            list.push_back(Held<const Object>(new Dictionary(std::move(entries))));
        }
    }
    return (new Array(std::move(list)))->as<CFArrayRef>();
}

Boolean AXIsProcessTrusted() {
    return System::shared().isTrusted;
}

Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef options) {
    if (options != nullptr) {
        const auto& found = Objects::shared().get<Dictionary>(options, "AXIsProcessTrustedWithOptions");
        const auto* const prompt = dynamic_cast<const Truth*>(valueIn(found, "kAXTrustedCheckOptionPrompt"));
        if (prompt != nullptr && prompt->content && !System::shared().isTrusted) {
            ++System::shared().promptCount;
        }
    }
    return System::shared().isTrusted;
}

Boolean IsSecureEventInputEnabled() {
    return System::shared().isSecureInputEnabled;
}

int pthread_setname_np(const char* name) {
    System::shared().nameThread(name);
    return 0;
}

int pthread_set_qos_class_self_np(qos_class_t qosClass, int relativePriority) {
    if (relativePriority != 0) {
        Objects::shared().fault("a thread below its class of service");
    }
    System::shared().setQualityOfService(qosClass);
    return 0;
}
