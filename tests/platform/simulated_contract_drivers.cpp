#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_system.h"
#include "tests/platform/contract/contracts.h"

#include <algorithm>

namespace ferrowyn::contract {
namespace {

class SimulatedDesktopDriver final : public DesktopDriver {
public:
    SimulatedDesktopDriver() { desktop_.launch({.pid = application(), .localizedName = "Application"}); }

    WindowInventory& inventory() override { return desktop_.platform().windowInventory; }
    WindowControl& control() override { return desktop_.platform().windowControl; }
    AccessibilityObservers& observers() override { return desktop_.platform().accessibilityObservers; }

    Pid application() override { return 100; }
    WindowId open(const std::string& title) override {
        desktop_.openWindow({.id = ++lastWindow_, .pid = application(), .title = title});
        return lastWindow_;
    }
    void close(WindowId window) override { desktop_.closeWindow(window); }
    void setTitle(WindowId window, const std::string& title) override { desktop_.setTitle(window, title); }
    void minimize(WindowId window) override {
        desktop_.changeWindow(window, [](auto& state) { state.isMinimized = true; });
    }
    void focus(WindowId window) override { desktop_.focusWindow(window); }
    void focusAnotherApplication() override {
        desktop_.launch({.pid = 200, .localizedName = "Other"});
        desktop_.openWindow({.id = 1000, .pid = 200});
        desktop_.focusWindow(1000);
    }

    bool runUntil(const std::function<bool()>& predicate) override {
        desktop_.settle();
        return predicate();
    }

private:
    SimulatedDesktop desktop_;
    WindowId lastWindow_ = 0;
};

class SimulatedKeyboardDriver final : public KeyboardDriver {
public:
    KeyboardTaps& taps() override { return desktop_.platform().keyboardTaps; }
    void pressTrigger() override {
        desktop_.flagsChanged(event_flags::option);
        gotTab_ = desktop_.keyDown({.keyCode = tab, .flags = event_flags::option});
    }
    void releaseTrigger() override {
        desktop_.keyUp({.keyCode = tab, .flags = event_flags::option});
        desktop_.flagsChanged(0);
    }
    bool applicationGotTrigger() override { return gotTab_; }
    std::vector<Refusal> refusals() override {
        const std::string words = "The simulated desktop refuses it";
        return {{words, [this, words](bool isRefused) {
                     isRefused ? desktop_.refuseKeyboardTap(words) : desktop_.allowKeyboardTap();
                 }}};
    }
    bool hasNothingOfATap() override { return !desktop_.tapIsInstalled(); }

private:
    static constexpr std::uint16_t tab = 48;
    SimulatedDesktop desktop_;
    bool gotTab_ = false;
};

class SimulatedWorkspaceDriver final : public WorkspaceDriver {
public:
    Workspace& workspace() override { return desktop_.platform().workspace; }
    Pid launch(const std::string& name) override {
        desktop_.launch({.pid = ++lastPid_, .localizedName = name});
        desktop_.openWindow({.id = static_cast<WindowId>(lastPid_), .pid = lastPid_});
        return lastPid_;
    }
    void quit(Pid application) override { desktop_.terminate(application); }
    void activate(Pid application) override { desktop_.focusWindow(static_cast<WindowId>(application)); }
    bool runUntil(const std::function<bool()>& predicate) override {
        desktop_.settle();
        return predicate();
    }

private:
    SimulatedDesktop desktop_;
    Pid lastPid_ = 100;
};

class SimulatedScreensDriver final : public ScreensDriver {
public:
    SimulatedScreensDriver() { removeDock(); }
    Screens& screens() override { return desktop_.platform().screens; }
    void showDock(double height) override { desktop_.setScreens({{frame, {0, 0, 1440, 900 - height}}}); }
    void removeDock() override { desktop_.setScreens({{frame, frame}}); }
    bool runUntil(const std::function<bool()>& predicate) override {
        desktop_.settle();
        return predicate();
    }

private:
    static constexpr Rect frame{0, 0, 1440, 900};
    SimulatedDesktop desktop_;
};

class SimulatedUserDefaultsDriver final : public UserDefaultsDriver {
public:
    UserDefaults& defaults() override { return desktop_.userDefaults(); }
    bool isStored(const std::string& key) override {
        return std::ranges::any_of(desktop_.storedValues(), [&](const auto& each) { return each.first == key; });
    }

private:
    SimulatedDesktop desktop_;
};

class SimulatedLoginItemDriver final : public LoginItemDriver {
public:
    LoginItem& item() override { return desktop_.platform().loginItem; }
    void refuse() override {
        desktop_.loginItem().error = {.domain = "Simulated", .code = 1, .localizedDescription = "It does not want to."};
    }

private:
    SimulatedDesktop desktop_;
};

FERROWYN_HOLDS_TO(WindowInventoryContract, Simulated, std::make_unique<SimulatedDesktopDriver>());
FERROWYN_HOLDS_TO(AccessibilityObserverContract, Simulated, std::make_unique<SimulatedDesktopDriver>());
FERROWYN_HOLDS_TO(KeyboardTapContract, Simulated, std::make_unique<SimulatedKeyboardDriver>());
FERROWYN_HOLDS_TO(WorkspaceContract, Simulated, std::make_unique<SimulatedWorkspaceDriver>());
FERROWYN_HOLDS_TO(ScreensContract, Simulated, std::make_unique<SimulatedScreensDriver>());
FERROWYN_HOLDS_TO(UserDefaultsContract, Simulated, std::make_unique<SimulatedUserDefaultsDriver>());
FERROWYN_HOLDS_TO(LoginItemContract, Simulated, std::make_unique<SimulatedLoginItemDriver>());

}  // namespace
}  // namespace ferrowyn::contract
