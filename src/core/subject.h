#pragma once

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "core/subscription.h"
#include "core/thread_checker.h"

namespace ferrowyn {

/// Broadcasts values to its subscribers, synchronously and in the order in which they subscribed. One thread only.
/// Subscribers may come and go while a value is being delivered: one that leaves is not called any more, one that
/// joins gets the next value. The subject may be destroyed before its tokens, even by a subscriber.
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
        // The list is held weakly: a token that outlives the subject has nothing left to end.
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

}  // namespace ferrowyn
