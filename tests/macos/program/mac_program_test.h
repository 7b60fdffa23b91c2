#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/app_delegate.h"
#include "app/app_services.h"
#include "app/user_interface.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_platform.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_system_services.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/input/panel_doubles.h"
#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_keyboard.h"
#include "tests/macos/fake/fake_system.h"
#include "tests/macos/fake/fake_window_server.h"
#include "tests/macos/objc/mac_test.h"

namespace ferrowyn::test {

/// The system's status item, and windows that only note what is done to them.
class StubUserInterface final : public UserInterface {
public:
    [[nodiscard]] std::string translated(const Phrase& phrase) override { return phrase.untranslated(); }
    [[nodiscard]] SwitcherContentFactory switcherContentFactory() override { return stubContentFactory(content); }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& /*options*/,
                                                                       AppServices& /*services*/,
                                                                       std::function<void()> /*onDone*/) override {
        return std::make_unique<Window>(steps, "setup");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& /*options*/,
                                                                     AppServices& /*services*/) override {
        return std::make_unique<Window>(steps, "settings");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& /*options*/) override {
        return std::make_unique<Window>(steps, "progress");
    }
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                  std::function<void()> /*onClose*/) override {
        return std::make_unique<Window>(steps, options.title.untranslated());
    }
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<MacStatusItem>(); }

    /// "show setup" and so on.
    [[nodiscard]] std::vector<std::string> takeSteps() { return std::exchange(steps, {}); }

    std::vector<std::string> steps;
    SwitcherContentCallbacks content;

private:
    class Window final : public OnDemandWindow {
    public:
        Window(std::vector<std::string>& steps, std::string name) : steps_(steps), name_(std::move(name)) {}
        void show() override { steps_.push_back("show " + name_); }
        void close() override { steps_.push_back("close " + name_); }

    private:
        std::vector<std::string>& steps_;
        std::string name_;
    };
};

}  // namespace ferrowyn::test

namespace ferrowyn::test {

/// The whole program on a Mac with two applications: Notes, in front with window 77, and behind it Mail with window 88.
/// The clock, the workers and the network are the simulated desktop's. When a test ends, no object of either half of
/// the system may be held any more, and none may have been misused.
class MacProgramTest : public MacTest {
protected:
    static constexpr Pid notes = 501;
    static constexpr Pid mail = 502;
    using Outcome = fake::Keyboard::Outcome;
    static constexpr fake::Keyboard::Key optionTab{.keyCode = 48, .flags = kCGEventFlagMaskAlternate};
    static constexpr fake::Keyboard::Key optionReleased{.type = kCGEventFlagsChanged};

    MacProgramTest();
    ~MacProgramTest() override;
    void TearDown() override;

    /// The system says that the program was launched, and all comes to rest.
    void launch();
    /// Does all that waits for the main thread, on the run loop and on the simulated one.
    void settle();
    /// Time passes.
    void advance(Seconds duration);
    Outcome press(const fake::Keyboard::Key& key);
    /// The system disables the tap for being too slow; then `delay` passes.
    void timeOutTapFor(Seconds delay);

    [[nodiscard]] AppServices& services() { return *program->delegate.services(); }
    [[nodiscard]] StubUserInterface& interface() { return program->interface; }
    [[nodiscard]] NSRunningApplication* running(Pid pid) const;
    [[nodiscard]] NSPanel* panel() const;
    /// The messages of the unified log since it was last asked for, without the debug ones.
    [[nodiscard]] std::vector<std::string> takeLog();
    [[nodiscard]] std::vector<WindowId> listedWindows();

    [[nodiscard]] static NSMenu* menu();
    [[nodiscard]] static NSMenuItem* row(const std::string& title);
    /// One entry a row: what the user reads.
    [[nodiscard]] static std::vector<std::string> rows();
    /// The user chooses the row; false when it is not enabled.
    bool choose(const std::string& title);
    [[nodiscard]] static std::string buttonSymbol();
    [[nodiscard]] static std::string buttonTooltip();
    /// The rows of the menu under the application's name.
    [[nodiscard]] static NSMenu* applicationMenu();
    /// What the header says below the program's name.
    [[nodiscard]] static std::string headerSubtitle();

    fake::Accessibility& accessibility = fake::Accessibility::shared();
    fake::WindowServer& windowServer = fake::WindowServer::shared();
    fake::Keyboard& keyboard = fake::Keyboard::shared();
    fake::System& system = fake::System::shared();
    fake::ElementId mailElement;
    fake::ElementId notesWindow;
    fake::ElementId mailWindow;

    /// The parts of the program, composed as in the program itself.
    struct Program {
        explicit Program(const Platform& toolkit);

        AppDelegate* told = nullptr;
        MacApplicationDelegate systemDelegate;
        MacLog log;
        MacPlatform adapter;
        StubUserInterface interface;
        AppDelegate delegate;
        std::unique_ptr<MacApplicationMenu> applicationMenu;
    };
    std::unique_ptr<SimulatedDesktop> toolkit = std::make_unique<SimulatedDesktop>();
    std::unique_ptr<Program> program;

private:
    fake::ElementId addApplication(Pid pid, NSString* name, NSString* identifier);
    fake::ElementId addWindow(Pid pid, WindowId id, const std::string& title);
};

}  // namespace ferrowyn::test
