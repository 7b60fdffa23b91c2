#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace ferrowyn {

/// A move-only token that ends a subscription, a timer or a request when it is destroyed. The object that registers a
/// callback keeps the token beside the state that the callback uses, so the callback cannot outlive that state.
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

    /// Ends it now. Does nothing when it has ended already.
    void reset() {
        if (auto cancel = std::exchange(cancel_, nullptr)) {
            cancel();
        }
    }

    /// Whether this token has something to end. A one-shot timer that has fired still counts until the token is reset.
    [[nodiscard]] explicit operator bool() const { return static_cast<bool>(cancel_); }

private:
    std::function<void()> cancel_;
};

/// Checks that an object is used on one thread only, the thread of its first use. For assertions; it is not a lock.
class ThreadChecker {
public:
    [[nodiscard]] bool isOnItsThread() {
        const auto current = std::this_thread::get_id();
        if (thread_ == std::thread::id()) {
            thread_ = current;
        }
        return thread_ == current;
    }

private:
    std::thread::id thread_;
};

/// Delivers values to its subscribers, synchronously and in the order in which they subscribed. One thread only.
/// Subscribers may come and go while a value is being delivered: one that leaves is not called any more, one that joins
/// gets the next value. The subject may be destroyed before its tokens, even by a subscriber.
template <typename Value>
class Subject {
public:
    using Handler = std::function<void(const Value&)>;

    Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    [[nodiscard]] Subscription subscribe(Handler handler) const {
        assert(list_->thread.isOnItsThread());
        const auto entry = std::make_shared<Entry>(Entry{std::move(handler), true});
        list_->entries.push_back(entry);
        // The list is held weakly, because a token may outlive the subject.
        return Subscription([list = std::weak_ptr<List>(list_), entry] {
            entry->isLive = false;
            if (const auto alive = list.lock()) {
                assert(alive->thread.isOnItsThread());
                std::erase(alive->entries, entry);
            }
        });
    }

    void send(const Value& value) const {
        assert(list_->thread.isOnItsThread());
        const auto current = list_->entries;
        for (const auto& entry : current) {
            if (entry->isLive) {
                entry->handler(value);
            }
        }
    }

    [[nodiscard]] bool hasSubscribers() const { return !list_->entries.empty(); }

private:
    struct Entry {
        Handler handler;
        bool isLive;
    };
    struct List {
        std::vector<std::shared_ptr<Entry>> entries;
        ThreadChecker thread;
    };

    std::shared_ptr<List> list_ = std::make_shared<List>();
};

/// A value that calls its subscribers on every assignment, after the new value is in place. One thread only (the main
/// thread, for everything that a service publishes).
template <typename Value>
class Published {
public:
    using Handler = std::function<void(const Value&)>;

    Published() : Published(Value{}) {}
    explicit Published(Value initial) : value_(std::make_shared<Value>(std::move(initial))) {}
    Published(const Published&) = delete;
    Published& operator=(const Published&) = delete;

    [[nodiscard]] const Value& get() const { return *value_; }

    /// Stores the value and calls the subscribers, also when it equals the old one.
    void set(Value value) { exchange(value); }

    /// Like `set`, and moves the old value into the argument, so that the caller can reuse its memory. An old value
    /// that is still being delivered is not moved; the argument is unspecified then.
    void exchange(Value& value) {
        // A subscriber may assign again or destroy this object during a delivery, so each delivery keeps its value
        // alive and unchanged. The value is shared only during a delivery.
        if (value_.use_count() > 1) {
            value_ = std::make_shared<Value>(std::move(value));
        } else {
            std::swap(*value_, value);
        }
        const std::shared_ptr<const Value> delivered = value_;
        subject_.send(*delivered);
    }

    /// Like `set`, but does nothing when the value equals the current one.
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
