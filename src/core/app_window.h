#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/geometry.h"

namespace ferrowyn {

/// The number that the window server gives a window. It identifies the window throughout the program.
using WindowId = std::uint32_t;

/// Identifies an application; the logic only compares the values. Positive for a real process. An adapter may make up
/// values for applications that are not one process, and for windows whose process the desktop does not report.
using Pid = std::int32_t;

/// An Accessibility element as an adapter represents it. Immutable; compared and hashed from any thread.
class AXElement {
public:
    virtual ~AXElement() = default;

    /// Whether both stand for the same element of the desktop. Two different handles may.
    [[nodiscard]] virtual bool equals(const AXElement& other) const = 0;
    /// Equal elements have equal hashes. The hash of an element never changes.
    [[nodiscard]] virtual std::size_t hash() const = 0;
};

/// A handle of one Accessibility element that can be the key of a map and pass between threads. It shares ownership of
/// the element because windows, observers and a running activation hold it independently of each other.
class AXElementRef {
public:
    explicit AXElementRef(std::shared_ptr<const AXElement> element) : element_(std::move(element)) {}

    [[nodiscard]] const AXElement& element() const { return *element_; }
    [[nodiscard]] std::size_t hash() const { return element_->hash(); }
    /// "AXElementRef(" + the hash in decimal + ")".
    [[nodiscard]] std::string description() const;

    friend bool operator==(const AXElementRef& a, const AXElementRef& b) {
        return a.element_ == b.element_ || a.element_->equals(*b.element_);
    }

private:
    std::shared_ptr<const AXElement> element_;
};

/// The `zOrder` of a window that the window server does not list: behind every listed one.
inline constexpr std::int64_t unlistedZOrder = std::numeric_limits<std::int64_t>::max();

/// A dialog that must be answered before the window that it blocks takes input again.
struct ModalDialog {
    WindowId id = 0;
    AXElementRef element;
    Pid pid = 0;

    friend bool operator==(const ModalDialog&, const ModalDialog&) = default;
};

/// One switchable window. A plain value, immutable by habit, safe to hand between threads.
struct AppWindow {
    WindowId id = 0;
    /// Absent when the window could not be matched to an element.
    std::optional<AXElementRef> axElement;
    Pid pid = 0;
    /// Absent for a process that belongs to no installed application.
    std::optional<std::string> bundleIdentifier;
    std::string appName;
    /// As the application reports it: may be empty or blank. UTF-8.
    std::string title;
    bool isMinimized = false;
    bool isFullScreen = false;
    bool isOnActiveSpace = false;
    bool isAppFocusedWindow = false;
    /// Global coordinates in points, y growing downward, as the window server gives them.
    Rect frame;
    /// Position in the window server's front-to-back order, 0 in front; `unlistedZOrder` when it is not listed.
    std::int64_t zOrder = 0;
    /// Where the owning application is installed: an absolute path (a bundle on macOS, a desktop file elsewhere).
    std::optional<std::string> bundleURL;
    /// The modal dialog that blocks this window. Where dialogs block dialogs, the one that takes input now. Absent when
    /// there is none, and where the desktop does not report it.
    std::optional<ModalDialog> blockedBy;

    /// The window that gets the keyboard when this one is activated: itself, or the dialog that blocks it.
    [[nodiscard]] WindowId inputWindowId() const { return blockedBy ? blockedBy->id : id; }

    /// The title without surrounding white space and newlines, or the application's name when nothing is left.
    [[nodiscard]] std::string displayTitle() const { return std::string(displayTitleView()); }
    /// The same text without a copy: a view into the fields of this value.
    [[nodiscard]] std::string_view displayTitleView() const;

    /// Compares only the fields that decide whether a refreshed list is published. A window that only moved, or whose
    /// application changed its focused window, counts as equal.
    friend bool operator==(const AppWindow& a, const AppWindow& b) {
        return a.id == b.id && a.pid == b.pid && a.title == b.title && a.isMinimized == b.isMinimized &&
               a.isFullScreen == b.isFullScreen && a.isOnActiveSpace == b.isOnActiveSpace && a.zOrder == b.zOrder;
    }
};

/// A shared, immutable window of a window list. Copying it copies no text, because every key press writes hundreds of
/// rows again for windows that have not changed. It keeps the whole list alive. Never empty; safe to pass between
/// threads.
class SharedWindow {
public:
    using List = std::shared_ptr<const std::vector<AppWindow>>;

    SharedWindow() : window_(none()) {}
    explicit SharedWindow(AppWindow window) : window_(std::make_shared<const AppWindow>(std::move(window))) {}
    /// `window` is an element of `list`.
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

/// Whether this process may read and drive other applications' windows.
enum class AccessibilityStatus { trusted, notTrusted };

}  // namespace ferrowyn

template <>
struct std::hash<ferrowyn::AXElementRef> {
    std::size_t operator()(const ferrowyn::AXElementRef& reference) const { return reference.hash(); }
};
/// Combines `id`, then `pid`, and nothing else.
template <>
struct std::hash<ferrowyn::AppWindow> {
    std::size_t operator()(const ferrowyn::AppWindow& window) const noexcept;
};
