#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/x11/harness/test_desktop.h"

namespace ferrowyn::x11test {

/// Which object of which program on the accessibility bus.
struct AccessibleReference {
    QString service;
    QString path;
    friend bool operator==(const AccessibleReference&, const AccessibleReference&) = default;
};

std::ostream& operator<<(std::ostream& stream, const AccessibleReference& reference);

/// What assistive technology is told of one object, as it was when it was asked, with all that is in it and shown.
struct AccessibleNode {
    /// Bits of the answer to "GetState", as the protocol numbers them.
    enum class State : unsigned {
        active = 1,
        checked = 4,
        enabled = 8,
        expanded = 10,
        focusable = 11,
        focused = 12,
        selectable = 22,
        selected = 23,
        sensitive = 24,
        showing = 25,
        visible = 30,
        checkable = 41,
    };

    AccessibleReference reference;
    /// As the protocol names it, such as "push button".
    std::string role;
    std::string name;
    std::string description;
    /// What a combo box or a text shows; empty for what has no text.
    std::string text;
    std::uint64_t states = 0;
    /// On the screen, in pixels.
    TestDesktop::Place place;
    /// Of what has a number.
    std::optional<double> value;
    std::vector<AccessibleNode> children;

    [[nodiscard]] bool is(State state) const { return (states >> static_cast<unsigned>(state) & 1U) != 0; }
    /// The first in reading order, this one included; nullptr when there is none.
    [[nodiscard]] const AccessibleNode* find(const std::string& role, const std::string& name) const;
    [[nodiscard]] const AccessibleNode* find(const std::function<bool(const AccessibleNode&)>& isIt) const;
    /// "role: name", and the description in parentheses where there is one.
    [[nodiscard]] std::string line() const;
    /// The lines of all that is in it, in reading order. What is there for the layout alone, which has neither a name
    /// nor a role of its own, is not among them.
    [[nodiscard]] std::vector<std::string> lines() const;
};

std::ostream& operator<<(std::ostream& stream, const AccessibleNode& node);

}  // namespace ferrowyn::x11test
