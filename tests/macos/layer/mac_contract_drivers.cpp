#include <algorithm>

#include "platform/macos/mac_accessibility_observers.h"
#include "platform/macos/mac_keyboard_tap.h"
#include "platform/macos/mac_window_control.h"
#include "platform/macos/mac_window_inventory.h"
#include "tests/macos/layer/mac_fixture.h"
#include "tests/platform/contract/contracts.h"
#include "tests/platform/contract/linux_threads.h"

namespace ferrowyn::contract {
namespace {

/// The fake system with what it checks at its end, for use in a driver.
class FakeMac : public MacFixture {
public:
    using MacFixture::accessibility;
    using MacFixture::desktop;
    using MacFixture::keyboard;
    using MacFixture::log;
    using MacFixture::mainLoop;
    using MacFixture::runMainLoop;
    using MacFixture::windowServer;

private:
    void TestBody() override {}
};

/// What AppKit answers is the other half's.
class ScriptedApplications final : public MacApplicationControl {
public:
    [[nodiscard]] bool isHidden(Pid /*pid*/) const override { return false; }
    void unhide(Pid /*pid*/) override {}
    void activate(Pid pid) override { active = pid; }
    [[nodiscard]] bool isActive(Pid pid) const override { return pid == active; }

    Pid active = 0;
};

/// Plays an application as the Accessibility interface and the window server tell of it.
class MacDesktopDriver final : public DesktopDriver {
public:
    WindowInventory& inventory() override { return inventory_; }
    WindowControl& control() override { return control_; }
    AccessibilityObservers& observers() override { return observers_; }

    Pid application() override { return pid; }
    WindowId open(const std::string& title) override {
        const WindowId window = ++lastWindow_;
        elements_[window] = fake::addWindow(pid, window, title, {10.0 * window, 20.0 * window, 300, 200});
        auto& windows = mac_.windowServer.windows;
        std::rotate(windows.begin(), windows.end() - 1, windows.end());
        mac_.accessibility.post(app_, "AXWindowCreated");
        return window;
    }
    void close(WindowId window) override {
        const auto element = elements_.at(window);
        mac_.windowServer.windows.erase(listed(window));
        auto& windows = std::get<std::vector<fake::Value>>(mac_.accessibility.element(app_).attributes.at("AXWindows"));
        std::erase_if(windows, [&](const fake::Value& each) { return std::get<fake::ElementId>(each) == element; });
        mac_.accessibility.element(element).isGone = true;
        mac_.accessibility.post(element, "AXUIElementDestroyed");
    }
    void setTitle(WindowId window, const std::string& title) override {
        set(window, "AXTitle", title);
        mac_.accessibility.post(elements_.at(window), "AXTitleChanged");
    }
    void minimize(WindowId window) override {
        set(window, "AXMinimized", true);
        mac_.accessibility.post(elements_.at(window), "AXWindowMiniaturized");
    }
    void focus(WindowId window) override {
        auto& windows = mac_.windowServer.windows;
        const auto place = listed(window);
        std::rotate(windows.begin(), place, place + 1);
        for (const auto& [each, element] : elements_) {
            for (const auto* const attribute : {"AXMain", "AXFocused"}) {
                mac_.accessibility.element(element).attributes[attribute] = each == window;
            }
        }
        applications_.active = pid;
        mac_.accessibility.element(app_).attributes["AXFocusedWindow"] = elements_.at(window);
        mac_.accessibility.post(app_, "AXFocusedWindowChanged");
    }
    void focusAnotherApplication() override { applications_.active = pid + 1; }

    bool runUntil(const std::function<bool()>& predicate) override {
        // An observer made in this turn has its source in the next.
        mac_.desktop.settle();
        FakeMac::runMainLoop();
        mac_.desktop.settle();
        return predicate();
    }

private:
    static constexpr Pid pid = 501;

    void set(WindowId window, const std::string& attribute, fake::Value value) {
        mac_.accessibility.element(elements_.at(window)).attributes[attribute] = std::move(value);
    }
    [[nodiscard]] std::vector<fake::WindowServer::Window>::iterator listed(WindowId window) const {
        return std::ranges::find_if(mac_.windowServer.windows, [&](const auto& each) {
            return std::get<std::int64_t>(each.keys.at("kCGWindowNumber")) == window;
        });
    }

    FakeMac mac_;
    fake::ElementId app_ = mac_.accessibility.addApplication(pid);
    std::map<WindowId, fake::ElementId> elements_;
    WindowId lastWindow_ = 0;
    ScriptedApplications applications_;
    MacWindowNumberLookup lookup_;
    MacWindowInventory inventory_{[] { return std::vector<RunningApplication>{{.pid = pid}}; }, lookup_};
    MacWindowControl control_{applications_, lookup_, mac_.log};
    MacAccessibilityObservers observers_{mac_.mainLoop, mac_.log};
};

class MacKeyboardDriver final : public KeyboardDriver {
public:
    KeyboardTaps& taps() override { return taps_; }
    void pressTrigger() override {
        static_cast<void>(mac_.keyboard.press({.type = kCGEventFlagsChanged, .flags = kCGEventFlagMaskAlternate}));
        outcome_ = mac_.keyboard.press({.keyCode = tab, .flags = kCGEventFlagMaskAlternate});
    }
    void releaseTrigger() override {
        static_cast<void>(
            mac_.keyboard.press({.type = kCGEventKeyUp, .keyCode = tab, .flags = kCGEventFlagMaskAlternate}));
        static_cast<void>(mac_.keyboard.press({.type = kCGEventFlagsChanged}));
    }
    bool applicationGotTrigger() override { return outcome_ == fake::Keyboard::Outcome::reachedApplication; }
    std::vector<Refusal> refusals() override {
        return {{"CGEvent.tapCreate failed", [this](bool isRefused) { mac_.keyboard.refusesTaps = isRefused; }},
                {"CFMachPortCreateRunLoopSource failed",
                 [this](bool isRefused) { mac_.keyboard.refusesSources = isRefused; }},
                {"The event tap's thread cannot be started", [this](bool isRefused) {
                     isRefused ? static_cast<void>(refusedThreads_.emplace()) : refusedThreads_.reset();
                 }}};
    }
    bool hasNothingOfATap() override { return !mac_.keyboard.hasTap() && soonHasThreads(threadsBefore_); }

private:
    static constexpr std::int64_t tab = 48;
    FakeMac mac_;
    std::ptrdiff_t threadsBefore_ = threadCount();
    std::optional<RefusedThreads> refusedThreads_;
    MacKeyboardTaps taps_{[](const std::function<void()>& work) { work(); }};
    fake::Keyboard::Outcome outcome_ = fake::Keyboard::Outcome::stuck;
};

FERROWYN_HOLDS_TO(WindowInventoryContract, Mac, std::make_unique<MacDesktopDriver>());
FERROWYN_HOLDS_TO(AccessibilityObserverContract, Mac, std::make_unique<MacDesktopDriver>());
FERROWYN_HOLDS_TO(KeyboardTapContract, Mac, std::make_unique<MacKeyboardDriver>());

}  // namespace
}  // namespace ferrowyn::contract
