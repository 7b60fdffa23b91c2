#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace ferrowyn {

/// Owns one reference of a Core Foundation object, or none. Any thread.
template <typename Ref>
class Owned {
public:
    Owned() = default;
    /// Takes over what a Create or Copy function returned; null when it returned nothing.
    explicit Owned(Ref adopted) : object_(adopted) {}
    /// Shares in an object that belongs to somebody else.
    [[nodiscard]] static Owned retaining(Ref object) {
        if (object != nullptr) {
            CFRetain(object);
        }
        return Owned(object);
    }

    Owned(Owned&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            reset();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    void reset() {
        if (const Ref object = std::exchange(object_, nullptr)) {
            CFRelease(object);
        }
    }

    [[nodiscard]] Ref get() const { return object_; }
    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

private:
    Ref object_ = nullptr;
};

}  // namespace ferrowyn
