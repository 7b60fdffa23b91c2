#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "core/app_window.h"
#include "platform/accessibility_observers.h"
#include "platform/keyboard_tap.h"
#include "platform/login_item.h"
#include "platform/screens.h"
#include "platform/user_defaults.h"
#include "platform/window_control.h"
#include "platform/window_inventory.h"
#include "platform/workspace.h"

namespace ferrowyn::contract {

/// No system hands out such a number.
constexpr Pid nobody = 2'000'000'000;

/// Makes the driver of one adapter, which plays the desktop that the adapter talks to. With it the same tests hold
/// every adapter to what its interface promises. Each program that links a contract instantiates it with such a driver.
template <typename Driver>
struct Adapter {
    std::string name;
    std::function<std::unique_ptr<Driver>()> makeDriver;

    /// The whole of what a test's name says about it.
    friend void PrintTo(const Adapter& adapter, std::ostream* out) { *out << adapter.name; }
};

template <typename Driver>
class Contract : public testing::TestWithParam<Adapter<Driver>> {
protected:
    std::unique_ptr<Driver> driver = this->GetParam().makeDriver();
};

/// One application whose windows come, change and go. Each call returns when the adapter can know of it; what the
/// adapter then tells its observers comes inside `runUntil`.
class DesktopDriver {
public:
    virtual ~DesktopDriver() = default;

    virtual WindowInventory& inventory() = 0;
    /// A reading, as a worker makes one.
    virtual std::unique_ptr<InventoryReading> read() { return inventory().beginReading(); }
    virtual WindowControl& control() = 0;
    virtual AccessibilityObservers& observers() = 0;

    virtual Pid application() = 0;
    /// Opens in front of all others.
    virtual WindowId open(const std::string& title) = 0;
    virtual void close(WindowId window) = 0;
    virtual void setTitle(WindowId window, const std::string& title) = 0;
    virtual void minimize(WindowId window) = 0;
    /// The user clicks the window.
    virtual void focus(WindowId window) = 0;
    /// The user clicks a window of another application.
    virtual void focusAnotherApplication() = 0;

    /// Runs the main loop until the predicate holds; false when it never does.
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class WindowInventoryContract : public Contract<DesktopDriver> {
protected:
    [[nodiscard]] std::vector<WindowId> listed();
    [[nodiscard]] std::optional<WindowServerEntry> entry(WindowId window);
    /// By its title, so that the lookup of window numbers has no part in it.
    [[nodiscard]] std::optional<AccessibleWindow> described(const std::string& title);
};

class AccessibilityObserverContract : public Contract<DesktopDriver> {
protected:
    [[nodiscard]] AXElementRef element(WindowId window);
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> observe(std::vector<AccessibilityNotification>& heard);
    [[nodiscard]] bool runUntilHeard(const std::vector<AccessibilityNotification>& heard,
                                     AccessibilityNotification notification);
};

/// A keyboard in front of an application. The trigger modifier is Option.
class KeyboardDriver {
public:
    virtual ~KeyboardDriver() = default;

    virtual KeyboardTaps& taps() = 0;
    /// Holds the modifier and presses Tab.
    virtual void pressTrigger() = 0;
    virtual void releaseTrigger() = 0;
    /// Whether the Tab of the last trigger, which has been let go, reached the application.
    [[nodiscard]] virtual bool applicationGotTrigger() = 0;

    /// Something that the desktop can refuse when a tap is started, and what the tap then says.
    struct Refusal {
        std::string words;
        std::function<void(bool isRefused)> set;
    };
    [[nodiscard]] virtual std::vector<Refusal> refusals() = 0;
    /// Whether no tap is installed, and neither a grab nor a thread of one is left.
    [[nodiscard]] virtual bool hasNothingOfATap() = 0;
};

class KeyboardTapContract : public Contract<KeyboardDriver> {
protected:
    /// Null, with a failure of the test, when it is refused.
    [[nodiscard]] std::unique_ptr<KeyboardTap> start(TapCallback callback);
    /// Presses the trigger until it reaches the application, or until it does not: another thread may take a moment to
    /// do what it was asked to.
    [[nodiscard]] bool triggerSoonReachesApplication(bool reaches);
};

class LoginItemDriver {
public:
    virtual ~LoginItemDriver() = default;

    virtual LoginItem& item() = 0;
    /// The desktop refuses the next request.
    virtual void refuse() = 0;
};

class LoginItemContract : public Contract<LoginItemDriver> {
protected:
    using Status = LoginItem::Status;
};

/// One screen, of which a dock of some height at the upper edge takes a part. What happens is told inside `runUntil`.
class ScreensDriver {
public:
    virtual ~ScreensDriver() = default;

    virtual Screens& screens() = 0;
    virtual void showDock(double height) = 0;
    virtual void removeDock() = 0;
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class ScreensContract : public Contract<ScreensDriver> {};

class UserDefaultsDriver {
public:
    virtual ~UserDefaultsDriver() = default;

    virtual UserDefaults& defaults() = 0;
    /// Whether the store itself, without what is registered, holds something under the key.
    [[nodiscard]] virtual bool isStored(const std::string& key) = 0;
};

class UserDefaultsContract : public Contract<UserDefaultsDriver> {};

/// Applications that come, go and take turns in front. What happens is told inside `runUntil`.
class WorkspaceDriver {
public:
    virtual ~WorkspaceDriver() = default;

    virtual Workspace& workspace() = 0;
    /// With a window, so that every kind of desktop knows of it.
    virtual Pid launch(const std::string& name) = 0;
    virtual void quit(Pid application) = 0;
    virtual void activate(Pid application) = 0;
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class WorkspaceContract : public Contract<WorkspaceDriver> {
protected:
    using Kind = WorkspaceEvent::Kind;
    struct Event {
        Kind kind;
        std::optional<Pid> pid;
        friend bool operator==(const Event&, const Event&) = default;
    };

    [[nodiscard]] Subscription observe(std::vector<Event>& events);
    [[nodiscard]] bool runUntilSeen(const std::vector<Event>& events, const Event& event);
};

}  // namespace ferrowyn::contract

/// A test's name ends with that of the adapter.
#define FERROWYN_HOLDS_TO(contractFixture, adapterName, ...)                                                        \
    INSTANTIATE_TEST_SUITE_P(Contract, contractFixture,                                                             \
                             testing::Values(contractFixture::ParamType{#adapterName, [] { return __VA_ARGS__; }}), \
                             [](const auto& instance) { return instance.param.name; })
