#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/texts.h"

namespace ferrowyn {

class Application;

/// A top-level window around one content widget. It keeps to its content's size where it is not resizable, as far as
/// the screen has room, closes on Escape and the desktop's shortcut for closing, and tells before it goes. Main thread.
class UtilityWindow final : public QWidget {
    Q_OBJECT

public:
    UtilityWindow(std::unique_ptr<QWidget> content, bool isResizable);

    /// Called when the window is about to close, while it is still visible.
    std::function<void()> onWillClose;
    /// Called each time the window has come onto the screen, when the window manager knows it.
    std::function<void()> onExposed;
    /// Called when the window was full screen and is so no longer.
    std::function<void()> onDidLeaveFullScreen;

    [[nodiscard]] bool isExposed() const { return isVisible() && wasExposed_; }
    /// In the middle of the screen on which the pointer is.
    void centre();
    /// For a title bar that lies over the window instead of above it.
    void leaveRoomAtTheTop(int height);

protected:
    void paintEvent(QPaintEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool wasExposed_ = false;
};

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

/// What a window shows while the program is still starting: a bar that says only that something is being done. Main
/// thread.
class ProgressView final : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize contentSize{460, 120};

    ProgressView();
};

}  // namespace ferrowyn
