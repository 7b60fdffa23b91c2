#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace ferrowyn {

/// An Accessibility element as an adapter represents it. Immutable; compared and hashed from any thread.
class AXElement {
public:
    virtual ~AXElement() = default;

    /// Whether both stand for the same element of the desktop, which two distinct handles may.
    [[nodiscard]] virtual bool equals(const AXElement& other) const = 0;
    /// Equal elements hash alike, and an element hashes alike for as long as it exists.
    [[nodiscard]] virtual std::size_t hash() const = 0;
};

/// A handle of one Accessibility element that can be a dictionary key and pass between threads. It shares ownership of
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

}  // namespace ferrowyn

template <>
struct std::hash<ferrowyn::AXElementRef> {
    std::size_t operator()(const ferrowyn::AXElementRef& reference) const { return reference.hash(); }
};
