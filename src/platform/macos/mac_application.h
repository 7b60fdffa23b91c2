#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/application.h"

namespace ferrowyn {

/// This process as macOS knows it. Main thread, once there is an application object.
class MacApplication final : public Application {
public:
    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    [[nodiscard]] std::optional<int> calendarYear(WallTime moment) const override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    /// The toolkit's number of a window is the address of its view, of which a window id holds the lower half.
    void bringToFront(WindowId window) override;
    void terminate() override;
    void revealInFileManager() override;
};

/// What the system tells the application's delegate. Each may be empty.
struct MacApplicationEvents {
    std::function<void()> onDidFinishLaunching;
    /// The user opens the program while it runs. Returns whether the system may also do what it usually does then.
    std::function<bool(bool hasVisibleWindows)> onShouldHandleReopen;
    std::function<void()> onWillTerminate;
};

/// The delegate of the application object for as long as this lives. The toolkit's own delegate passes on to the one
/// that is there before it, so this is made before the QApplication. Main thread.
class MacApplicationDelegate {
public:
    explicit MacApplicationDelegate(MacApplicationEvents events);
    ~MacApplicationDelegate();
    MacApplicationDelegate(const MacApplicationDelegate&) = delete;
    MacApplicationDelegate& operator=(const MacApplicationDelegate&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// What the rows of the application's menu say.
struct MacApplicationMenuTitles {
    std::string settings;
    std::string quit;
};

/// The menu under the application's name, which the menu bar shows while one of the program's windows is in front: the
/// settings (Command and comma) and the end of the program (Command and Q). The application's main menu for as long as
/// this lives. Main thread, made after the application object.
class MacApplicationMenu {
public:
    MacApplicationMenu(const MacApplicationMenuTitles& titles, std::function<void()> onOpenSettings);
    ~MacApplicationMenu();
    MacApplicationMenu(const MacApplicationMenu&) = delete;
    MacApplicationMenu& operator=(const MacApplicationMenu&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// Gives the window of a top-level widget, named by the address of its view, the look of the program's ordinary
/// windows: the content reaches under a transparent title bar, and closing does not release the window. Returns the
/// height of the title bar in points, which the content must leave free. Main thread.
[[nodiscard]] int configureUtilityWindow(std::uintptr_t view, bool isResizable);

}  // namespace ferrowyn
