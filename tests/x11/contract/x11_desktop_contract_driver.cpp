#include <unistd.h>

#include <map>
#include <stdexcept>

#include "tests/platform/contract/desktop_contract.h"
#include "tests/x11/inventory_fixture.h"

namespace ferrowyn::contract {
namespace {

using x11test::AdapterParts;
using x11test::PrivateXServer;
using x11test::TestDesktop;
using x11test::TestWindow;
using x11test::WindowManagerProcess;

/// Windows of this process under a real window manager. Each step waits until the adapter has heard of it.
class X11DesktopDriver final : public DesktopDriver {
public:
    WindowInventory& inventory() override { return parts_.inventory; }
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
    AdapterParts parts_{server_.display()};
};

FERROWYN_HOLDS_TO(WindowInventoryContract, X11, std::make_unique<X11DesktopDriver>());
FERROWYN_HOLDS_TO(AccessibilityObserverContract, X11, std::make_unique<X11DesktopDriver>());

}  // namespace
}  // namespace ferrowyn::contract
