#pragma once

#include <functional>
#include <utility>

namespace ferrowyn {

/// A move-only token that ends something when it is dropped: a subscription, a timer, a monitor. Dropping it is what
/// "holds its target weakly" means here: whoever registers a callback keeps the token beside the state the callback
/// touches, so the callback cannot outlive that state.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Subscription(Subscription&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() { reset(); }

    /// Ends it now; harmless when it has ended already.
    void reset() {
        if (auto cancel = std::exchange(cancel_, nullptr)) {
            cancel();
        }
    }

    /// Whether this token still stands for something. A one-shot timer that has fired still counts until it is reset.
    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(cancel_); }

private:
    std::function<void()> cancel_;
};

}  // namespace ferrowyn
