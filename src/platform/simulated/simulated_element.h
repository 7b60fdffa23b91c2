#pragma once

#include <functional>

#include "core/app_window.h"

namespace ferrowyn {

/// The Accessibility element of a simulated window: every handle of one window is equal to every other.
class SimulatedElement final : public AXElement {
public:
    explicit SimulatedElement(WindowId id) : id_(id) {}

    [[nodiscard]] WindowId id() const { return id_; }
    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* element = dynamic_cast<const SimulatedElement*>(&other);
        return element != nullptr && element->id_ == id_;
    }
    [[nodiscard]] std::size_t hash() const override { return std::hash<WindowId>{}(id_); }

    [[nodiscard]] static AXElementRef reference(WindowId id) {
        return AXElementRef(std::make_shared<SimulatedElement>(id));
    }
    /// 0, which no window has, for an element of another desktop.
    [[nodiscard]] static WindowId idOf(const AXElementRef& reference) {
        const auto* element = dynamic_cast<const SimulatedElement*>(&reference.element());
        return element != nullptr ? element->id_ : 0;
    }

private:
    WindowId id_;
};

}  // namespace ferrowyn
