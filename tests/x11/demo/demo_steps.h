#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/x11/demo/demo_stage.h"

namespace ferrowyn::x11test {

/// The switcher: quick and held, typed into, in its layouts, with a pinned application and a minimised window.
class SwitchingDemo {
public:
    explicit SwitchingDemo(DemoStage& stage) : stage_(stage), desk_(stage.desk) {}

    void run();

private:
    void quickSwitch();
    void heldSession();
    void gridLayout();
    void typedFilter();
    void digitJump();
    void pin();
    void restoreMinimised();

    DemoStage& stage_;
    DemoDesktop& desk_;
};

/// What the program has beside the switcher: its icon in a tray with the menu, the settings and the setup window.
class WindowsDemo {
public:
    explicit WindowsDemo(DemoStage& stage) : stage_(stage), desk_(stage.desk) {}

    void run();

private:
    void statusMenu();
    void changedSetting();
    void setupWindow();

    /// Does what opens one of the program's windows, and times until it is the active one.
    std::optional<TestDesktop::Place> openWindow(const std::string& done, const std::function<void()>& act,
                                                 const std::string& title);
    /// Escape closes the active one of the program's windows.
    void closeWindow(const std::string& title);
    /// A second start of the program, which asks the running one.
    void ask(const std::string& argument);

    DemoStage& stage_;
    DemoDesktop& desk_;
};

}  // namespace ferrowyn::x11test
