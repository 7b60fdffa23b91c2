#pragma once

#include <functional>
#include <memory>
#include <optional>
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

    Published() : Published(Value{}) {}
    explicit Published(Value initial) : value_(std::make_shared<Value>(std::move(initial))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const Value& get() const { return *value_; }

    /// Stores the value and tells the subscribers, also when it equals the old one: whether an equal value is worth
    /// publishing is for the owner to say.
    void set(Value value) { exchange(value); }

    /// The same, and hands back the value that was there, whose memory may serve for the next one. A value that is
    /// still being delivered is not handed back; the argument is unspecified then.
    void exchange(Value& value) {
        // A subscriber may assign again, or destroy this object, while it and others are still being told: each
        // delivery keeps its own value alive and unchanged. Only a delivery shares the value.
        if (value_.use_count() > 1) {
            value_ = std::make_shared<Value>(std::move(value));
        } else {
            std::swap(*value_, value);
        }
        const std::shared_ptr<const Value> delivered = value_;
        subject_.send(*delivered);
    }

    /// Publishes only a value that differs from the current one.
    void setIfChanged(Value value) {
        if (!(value == *value_)) {
            set(std::move(value));
        }
    }

    /// Delivers the current value at once and every later one.
    [[nodiscard]] Subscription subscribe(Handler handler) const {
        const std::shared_ptr<const Value> delivered = value_;
        handler(*delivered);
        return subject_.subscribe(std::move(handler));
    }

    /// Delivers the current value at once, and every later one that differs from the one delivered before it.
    [[nodiscard]] Subscription subscribeToDistinct(Handler handler) const {
        return subscribe([handler = std::move(handler), last = std::optional<Value>()](const Value& value) mutable {
            if (last != value) {
                last = value;
                handler(value);
            }
        });
    }

    /// Delivers later values only.
    [[nodiscard]] Subscription subscribeToChanges(Handler handler) const {
        return subject_.subscribe(std::move(handler));
    }

private:
    std::shared_ptr<Value> value_;
    Subject<Value> subject_;
};

}  // namespace ferrowyn
