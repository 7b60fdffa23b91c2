#pragma once

#include <QWidget>
#include <functional>
#include <memory>

namespace ferrowyn {

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

}  // namespace ferrowyn
