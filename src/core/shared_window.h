#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "core/app_window.h"

namespace ferrowyn {

/// A window of a list that several rows, sessions and previews show at once. Copying it copies no text: at every
/// keystroke hundreds of rows are written anew, of windows that have not changed. It keeps the whole list alive that
/// the window came from. Never empty; the window never changes, so it may pass between threads.
class SharedWindow {
public:
    using List = std::shared_ptr<const std::vector<AppWindow>>;

    SharedWindow() : window_(none()) {}
    explicit SharedWindow(AppWindow window) : window_(std::make_shared<const AppWindow>(std::move(window))) {}
    /// The window is one of the list's.
    SharedWindow(const List& list, const AppWindow& window) : window_(list, &window) {}

    [[nodiscard]] const AppWindow& operator*() const { return *window_; }
    [[nodiscard]] const AppWindow* operator->() const { return window_.get(); }
    operator const AppWindow&() const { return *window_; }

    friend bool operator==(const SharedWindow& a, const SharedWindow& b) {
        return a.window_ == b.window_ || *a.window_ == *b.window_;
    }

private:
    [[nodiscard]] static const std::shared_ptr<const AppWindow>& none() {
        static const auto window = std::make_shared<const AppWindow>();
        return window;
    }

    std::shared_ptr<const AppWindow> window_;
};

}  // namespace ferrowyn
