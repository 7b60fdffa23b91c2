#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/texts.h"

class QWidget;

namespace ferrowyn {

class Application;
class UtilityWindow;

/// One of the small windows beside the switcher: made when it is first shown, then kept and shown again for the rest of
/// the run. While any of them is open the program has a place among the running applications. Main thread. The
/// application outlives it.
class UtilityWindowController {
public:
    using ContentBuilder = std::function<std::unique_ptr<QWidget>()>;
    /// Gives a window what its desktop knows and the toolkit does not, each time before it comes onto the screen, and
    /// when it is no longer full screen: the toolkit may have made the desktop's window anew since it was closed, and
    /// sets what it knows of the window again after full screen.
    /// The height of what then lies over the top of the window's content.
    using WindowConfiguration = std::function<int(std::uintptr_t windowNumber, bool isResizable)>;

    /// A window that is not resizable is as large as its content asks to be, at every moment.
    UtilityWindowController(Application& application, Phrase title, bool isResizable, ContentBuilder content,
                            WindowConfiguration configure = nullptr);
    ~UtilityWindowController();
    UtilityWindowController(const UtilityWindowController&) = delete;
    UtilityWindowController& operator=(const UtilityWindowController&) = delete;

    /// Brings the window to the front with the keyboard, whatever is active now.
    void show();
    void close();

    [[nodiscard]] bool isResizable() const { return isResizable_; }
    /// Null until it was first shown.
    [[nodiscard]] QWidget* window() const;

private:
    void makeWindow();
    void configureWindow();
    void windowWillClose();

    Application& application_;
    std::unique_ptr<UtilityWindow> window_;
    Phrase title_;
    bool isResizable_;
    ContentBuilder content_;
    WindowConfiguration configure_;
};

}  // namespace ferrowyn
