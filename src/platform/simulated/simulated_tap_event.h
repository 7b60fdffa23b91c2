#pragma once

#include <string>
#include <utility>

#include "platform/event_tap.h"

namespace ferrowyn {

/// A key as a test presses it.
struct SimulatedKey {
    std::uint16_t keyCode = 0;
    std::uint64_t flags = 0;
    /// What the key types with its own flags, and with Shift alone or none.
    std::u16string text;
    std::u16string textWithReducedFlags;
};

class SimulatedTapEvent final : public TapEvent {
public:
    SimulatedTapEvent(Type type, SimulatedKey key) : type_(type), key_(std::move(key)) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return key_.flags; }
    [[nodiscard]] std::uint16_t keyCode() const override { return key_.keyCode; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override {
        return withFlags ? key_.textWithReducedFlags : key_.text;
    }

private:
    Type type_;
    SimulatedKey key_;
};

}  // namespace ferrowyn
