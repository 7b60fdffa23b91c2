#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>

#include "platform/linux/ini_user_defaults.h"
#include "platform/linux/xdg_login_item.h"
#include "platform/x11/keyboard/x11_keyboard_tap.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_screens.h"
#include "tests/platform/contract/contracts.h"
#include "tests/platform/contract/linux_threads.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/x11/adapter/inventory_fixture.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::contract {
namespace {

namespace key = x11test::key;
using x11test::AdapterParts;
using x11test::ApplicationProcess;
using x11test::PrivateXServer;
using x11test::TestDesktop;
using x11test::TestWindow;
using x11test::WindowManagerProcess;

/// Windows of this process under a real window manager. Each step waits until the adapter has heard of it.
class X11DesktopDriver final : public DesktopDriver {
public:
    WindowInventory& inventory() override { return parts_.inventory; }
    std::unique_ptr<InventoryReading> read() override { return parts_.read(); }
    WindowControl& control() override { return parts_.control; }
    AccessibilityObservers& observers() override { return parts_.observers; }

    Pid application() override { return getpid(); }
    WindowId open(const std::string& title) override {
        auto window = std::make_unique<TestWindow>(
            server_.display(), TestWindow::Options{.title = title, .pid = static_cast<std::uint32_t>(getpid())});
        const WindowId id = window->id();
        windows_[id] = std::move(window);
        require(parts_.runUntilKnown(id), "the new window to be known");
        focus(id);
        return id;
    }
    void close(WindowId window) override {
        windows_.erase(window);
        require(parts_.runUntil([&] { return parts_.monitor.model().find(window) == nullptr; }),
                "the closed window to be gone");
    }
    void setTitle(WindowId window, const std::string& title) override {
        windows_.at(window)->setTitle(title);
        require(parts_.runUntil([&] { return parts_.accessibleWindow(window).value().title == title; }),
                "the new title");
    }
    void minimize(WindowId window) override {
        desktop_.iconify(window);
        require(parts_.runUntil([&] { return parts_.accessibleWindow(window).value().isMinimized == true; }),
                "the window to be minimized");
    }
    void focus(WindowId window) override {
        desktop_.activate(window);
        require(parts_.runUntil([&] {
            return parts_.monitor.model().activeWindow() == window &&
                   parts_.inventory.windowOrder().value().front() == window;
        }),
                "the window to be the active one, in front of all others");
    }

    void focusAnotherApplication() override {
        other_.emplace(server_, "Other", std::vector<std::string>{"Other's window"});
        require(parts_.runUntilKnown(other_->windows().front()), "the other application's window to be known");
        focus(other_->windows().front());
    }

    bool runUntil(const std::function<bool()>& predicate) override { return parts_.runUntil(predicate); }

private:
    static void require(bool has, const std::string& what) {
        if (!has) {
            throw std::runtime_error("waited in vain for " + what);
        }
    }

    PrivateXServer server_;
    WindowManagerProcess manager_{server_, "openbox"};
    TestDesktop desktop_{server_.display()};
    std::map<WindowId, std::unique_ptr<TestWindow>> windows_;
    std::optional<ApplicationProcess> other_;
    AdapterParts parts_{server_.display()};
};

FERROWYN_HOLDS_TO(WindowInventoryContract, X11, std::make_unique<X11DesktopDriver>());
FERROWYN_HOLDS_TO(AccessibilityObserverContract, X11, std::make_unique<X11DesktopDriver>());

/// Real keys over a window that has the keyboard. No window manager, because it would use the trigger itself.
class X11KeyboardDriver final : public KeyboardDriver {
public:
    X11KeyboardDriver() {
        if (!desktop_.waitUntil([&] { return desktop_.isViewable(window_.id()); })) {
            throw std::runtime_error("waited in vain for the window to be shown");
        }
        xcb_set_input_focus(window_.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window_.id(), XCB_CURRENT_TIME);
        static_cast<void>(window_.takeInput());
    }

    KeyboardTaps& taps() override { return taps_; }
    void pressTrigger() override {
        static_cast<void>(window_.takeInput());
        input_.press(key::leftAlt);
        input_.press(key::tab);
    }
    void releaseTrigger() override {
        input_.release(key::tab);
        input_.release(key::leftAlt);
    }
    bool applicationGotTrigger() override {
        // What holds the keyboard gives it back in its own time; keys that are pressed after that reach the window.
        if (!desktop_.waitForUntouchedKeyboard()) {
            throw std::runtime_error("waited in vain for the keyboard to be free");
        }
        return std::ranges::count(window_.takeInput().keyPresses, key::tab) > 0;
    }
    std::vector<Refusal> refusals() override {
        return {{"No connection to the X server for the keyboard",
                 [this](bool isRefused) { isRefused ? refuseConnections() : allowConnections(); }},
                {"The event tap's thread cannot be started", [this](bool isRefused) {
                     isRefused ? static_cast<void>(refusedThreads_.emplace()) : refusedThreads_.reset();
                 }}};
    }
    bool hasNothingOfATap() override {
        return !x11test::childNamed(getpid(), "ferrowyn-keyboard-guard") && soonHasThreads(threadsBefore_) &&
               desktop_.waitForFreeKeyboard();
    }

private:
    using Connection = std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)>;

    [[nodiscard]] Connection connect() const {
        return {xcb_connect(server_.display().c_str(), nullptr), &xcb_disconnect};
    }
    [[nodiscard]] bool accepts() const { return xcb_connection_has_error(connect().get()) == 0; }
    /// The server takes only so many clients.
    void refuseConnections() {
        for (auto next = connect(); xcb_connection_has_error(next.get()) == 0; next = connect()) {
            others_.push_back(std::move(next));
        }
    }
    void allowConnections() {
        others_.clear();
        if (!desktop_.waitUntil([this] { return accepts(); })) {
            throw std::runtime_error("waited in vain for the server to take clients again");
        }
    }

    x11test::PrivateXServer server_;
    x11test::TestDesktop desktop_{server_.display()};
    x11test::TestInput input_{server_.display()};
    x11test::TestWindow window_{server_.display(), {}};
    std::vector<Connection> others_;
    std::ptrdiff_t threadsBefore_ = threadCount();
    std::optional<RefusedThreads> refusedThreads_;
    RecordedLog log_;
    X11InputContext context_;
    X11KeyboardTaps taps_{context_, log_, server_.display()};
};

FERROWYN_HOLDS_TO(KeyboardTapContract, X11, std::make_unique<X11KeyboardDriver>());

class X11WorkspaceDriver final : public WorkspaceDriver {
public:
    Workspace& workspace() override { return parts_.workspace; }
    Pid launch(const std::string& name) override {
        auto application =
            std::make_unique<ApplicationProcess>(server_, name, std::vector<std::string>{name + "'s window"});
        const Pid pid = application->pid();
        applications_[pid] = std::move(application);
        return pid;
    }
    void quit(Pid application) override { applications_.erase(application); }
    void activate(Pid application) override { desktop_.activate(applications_.at(application)->windows().front()); }
    bool runUntil(const std::function<bool()>& predicate) override { return parts_.runUntil(predicate); }

private:
    PrivateXServer server_;
    WindowManagerProcess manager_{server_, "openbox"};
    TestDesktop desktop_{server_.display()};
    AdapterParts parts_{server_.display()};
    std::map<Pid, std::unique_ptr<ApplicationProcess>> applications_;
};

class X11ScreensDriver final : public ScreensDriver {
public:
    Screens& screens() override { return screens_; }
    void showDock(double height) override {
        const auto pixels = static_cast<std::uint32_t>(height);
        dock_ =
            std::make_unique<TestWindow>(server_.display(), TestWindow::Options{.title = "Dock",
                                                                                .x = 0,
                                                                                .y = 0,
                                                                                .width = width,
                                                                                .height = static_cast<int>(pixels),
                                                                                .type = "_NET_WM_WINDOW_TYPE_DOCK"});
        const std::uint32_t strut[12] = {0, 0, pixels, 0, 0, 0, 0, 0, 0, width - 1, 0, 0};
        dock_->setProperty("_NET_WM_STRUT_PARTIAL", "CARDINAL", 32, strut, 12);
    }
    void removeDock() override { dock_.reset(); }
    bool runUntil(const std::function<bool()>& predicate) override { return parts_.runUntil(predicate); }

private:
    static constexpr int width = 1280;

    PrivateXServer server_;
    WindowManagerProcess manager_{server_, "openbox"};
    /// For its main loop, which the screens' events come through.
    AdapterParts parts_{server_.display()};
    X11Screens screens_{parts_.events};
    std::unique_ptr<TestWindow> dock_;
};

class LinuxUserDefaultsDriver final : public UserDefaultsDriver {
public:
    UserDefaults& defaults() override { return defaults_; }
    bool isStored(const std::string& key) override {
        defaults_.flush();
        return IniUserDefaults(file_, log_).value(key).has_value();
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "Ferrowyn.ini";
    RecordedLog log_;
    IniUserDefaults defaults_{file_, log_};
};

class LinuxLoginItemDriver final : public LoginItemDriver {
public:
    LoginItem& item() override { return item_; }
    void refuse() override {
        // A file in the place of the folder, which stops the administrator as well.
        std::filesystem::create_directories(folders_.configHome);
        std::ofstream(folders_.configHome / "autostart") << "in the way";
    }

private:
    [[nodiscard]] std::filesystem::path makeProgram() const {
        const auto program = folder_.path() / "ferrowyn";
        std::ofstream(program) << "#!/bin/sh\n";
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return program;
    }
    [[nodiscard]] XdgFolders makeFolders() const {
        XdgFolders folders;
        folders.configHome = folder_.path() / "config";
        folders.configDirs = {folder_.path() / "etc"};
        return folders;
    }

    TemporaryFolder folder_;
    XdgFolders folders_ = makeFolders();
    XdgLoginItem item_{folders_, {"com.larkmoor.ferrowyn", "Ferrowyn", makeProgram()}, {"GNOME", "/usr/bin:/bin"}};
};

FERROWYN_HOLDS_TO(WorkspaceContract, X11, std::make_unique<X11WorkspaceDriver>());
FERROWYN_HOLDS_TO(ScreensContract, X11, std::make_unique<X11ScreensDriver>());
FERROWYN_HOLDS_TO(UserDefaultsContract, X11, std::make_unique<LinuxUserDefaultsDriver>());
FERROWYN_HOLDS_TO(LoginItemContract, X11, std::make_unique<LinuxLoginItemDriver>());

}  // namespace
}  // namespace ferrowyn::contract
