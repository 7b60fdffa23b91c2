#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/switcher_options.h"
#include "platform/event_tap.h"

namespace ferrowyn {

/// An event that types different texts with its own flags, with none and with Shift alone, so that a test sees which
/// one was asked for.
class StubTapEvent final : public TapEvent {
public:
    StubTapEvent(Type type, std::uint16_t keyCode, std::uint64_t flags)
        : type_(type), keyCode_(keyCode), flags_(flags) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return flags_; }
    [[nodiscard]] std::uint16_t keyCode() const override { return keyCode_; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override {
        if (!withFlags) {
            return ownText;
        }
        return *withFlags == event_flags::shift ? shiftedText : (*withFlags == 0 ? plainText : wrongText);
    }

    std::u16string ownText = u"own";
    std::u16string plainText = u"plain";
    std::u16string shiftedText = u"shifted";
    std::u16string wrongText = u"asked with other flags";

private:
    Type type_;
    std::uint16_t keyCode_;
    std::uint64_t flags_;
};

}  // namespace ferrowyn
