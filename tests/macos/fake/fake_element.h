#pragma once

#include <atomic>

#include "tests/macos/fake/fake_object.h"
#include "tests/macos/fake/fake_value.h"

namespace ferrowyn::fake {

/// A handle of an element. Handles of one element are equal, and each has a messaging timeout of its own.
class ElementHandle final : public Object {
public:
    /// What the system waits where nobody said otherwise.
    static constexpr float defaultTimeout = 6;

    explicit ElementHandle(ElementId id) : Object("AXUIElement"), id_(id) {}

    [[nodiscard]] ElementId id() const { return id_; }
    [[nodiscard]] bool equals(const Object& other) const override {
        return dynamic_cast<const ElementHandle&>(other).id_ == id_;
    }
    [[nodiscard]] std::size_t hash() const override { return static_cast<std::size_t>(id_.number) * 7919; }

    std::atomic<float> timeout{defaultTimeout};

private:
    ElementId id_;
};

}  // namespace ferrowyn::fake
