#pragma once

#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "core/texts.h"

namespace ferrowyn {

class Application;

/// One of the program's own windows around one content widget; without this word, a window is one that the switcher
/// lists. Where it is not resizable it is as large as its content, as far as the screen has room. It closes on Escape
/// and on the desktop's shortcut for closing. Main thread.
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
    /// Moves the window to the middle of the screen with the pointer.
    void centre();
    /// For a title bar that lies over the top of the content. `height` is in points.
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

/// Shows a utility window. It is made when it is first shown, and then kept. While any of them is open,
/// the program is listed among the running applications. Main thread. The application outlives it.
class UtilityWindowController {
public:
    using ContentBuilder = std::function<std::unique_ptr<QWidget>()>;
    /// Configures what the desktop knows of a window and the toolkit does not. Called before the window is shown,
    /// because the toolkit may have made a new native window since it was closed, and when it leaves full screen,
    /// because the toolkit then configures the window again. Returns the height in points of what lies over the top of
    /// the content.
    using WindowConfiguration = std::function<int(std::uintptr_t windowNumber, bool isResizable)>;

    /// A window that is not resizable always has the size of its content.
    UtilityWindowController(Application& application, Phrase title, bool isResizable, ContentBuilder content,
                            WindowConfiguration configure = nullptr);
    ~UtilityWindowController();
    UtilityWindowController(const UtilityWindowController&) = delete;
    UtilityWindowController& operator=(const UtilityWindowController&) = delete;

    /// Shows the window in front of all others, with the keyboard.
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

/// What a utility window shows while the program is still starting: a bar without an end. Main thread.
class ProgressView final : public QWidget {
    Q_OBJECT

public:
    static constexpr QSize contentSize{460, 120};

    ProgressView();
};

}  // namespace ferrowyn
