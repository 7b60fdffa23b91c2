#pragma once

#include <functional>
#include <utility>

#include "core/subject.h"
#include "core/subscription.h"

namespace ferrowyn {

/// A value that tells its subscribers about every assignment. The new value is in place before they are told. One
/// thread only (the main thread, for everything that a service publishes).
template <typename Value>
class Published {
public:
    using Handler = std::function<void(const Value&)>;

    Published() = default;
    explicit Published(Value initial) : value_(std::move(initial)) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const Value& get() const { return value_; }

    /// Stores the value and tells the subscribers, also when it equals the old one: whether an equal value is worth
    /// publishing is for the owner to say.
    void set(Value value) {
        value_ = std::move(value);
        // Subscribers get a copy: one of them may assign again while the others are still being told.
        const Value delivered = value_;
        subject_.send(delivered);
    }

    /// Publishes only a value that differs from the current one.
    void setIfChanged(Value value) {
        if (!(value == value_)) {
            set(std::move(value));
        }
    }

    /// Delivers the current value at once and every later one.
    [[nodiscard]] Subscription subscribe(Handler handler) const {
        handler(value_);
        return subject_.subscribe(std::move(handler));
    }

    /// Delivers later values only.
    [[nodiscard]] Subscription subscribeToChanges(Handler handler) const {
        return subject_.subscribe(std::move(handler));
    }

private:
    Value value_{};
    Subject<Value> subject_;
};

}  // namespace ferrowyn
