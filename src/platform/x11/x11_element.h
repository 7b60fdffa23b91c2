#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>

#include "core/app_window.h"

namespace ferrowyn {

/// A window as the logic holds it: its XID.
class X11Element final : public AXElement {
public:
    explicit X11Element(xcb_window_t window) : window_(window) {}

    [[nodiscard]] static AXElementRef make(xcb_window_t window) {
        return AXElementRef(std::make_shared<const X11Element>(window));
    }
    /// The window of an element of this desktop.
    [[nodiscard]] static std::optional<xcb_window_t> windowOf(const AXElementRef& reference) {
        const auto* const element = dynamic_cast<const X11Element*>(&reference.element());
        return element == nullptr ? std::nullopt : std::optional(element->window_);
    }

    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* const element = dynamic_cast<const X11Element*>(&other);
        return element != nullptr && element->window_ == window_;
    }
    [[nodiscard]] std::size_t hash() const override { return std::hash<xcb_window_t>{}(window_); }

private:
    xcb_window_t window_;
};

}  // namespace ferrowyn
