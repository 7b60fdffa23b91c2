#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace ferrowyn {

/// Delivers a task in a later turn of the main loop.
using PostTask = std::function<void(std::function<void()>)>;

/// Lets a callback find out whether the object that made it still exists. The object keeps the token as a member; a
/// guarded callback does nothing once the token is destroyed. Guarded callbacks run on the token's thread; copying them
/// and asking a `Watch` is safe on any thread.
class LifeToken {
public:
    LifeToken() = default;
    LifeToken(const LifeToken&) = delete;
    LifeToken& operator=(const LifeToken&) = delete;

    /// Says whether the token still exists, for a callback that has something to do in both cases.
    class Watch {
    public:
        [[nodiscard]] bool isAlive() const { return !life_.expired(); }

    private:
        friend class LifeToken;
        explicit Watch(std::weak_ptr<const bool> life) : life_(std::move(life)) {}
        std::weak_ptr<const bool> life_;
    };
    [[nodiscard]] Watch watch() const { return Watch(life_); }

    /// Wraps a callback so that it does nothing once the token is destroyed. The wrapper takes any arguments, returns
    /// nothing, and calls the callback as a constant.
    template <typename Callback>
    [[nodiscard]] auto guard(Callback callback) const {
        return [watch = watch(), callback = std::move(callback)](auto&&... arguments) {
            if (watch.isAlive()) {
                callback(std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

private:
    std::shared_ptr<const bool> life_ = std::make_shared<const bool>(true);
};

/// Runs its work once in a later turn of the loop, however often it was requested until then. Destroying it cancels the
/// work. One thread.
class CoalescedTask {
public:
    CoalescedTask(PostTask post, std::function<void()> work) : post_(std::move(post)), work_(std::move(work)) {}

    void request() {
        if (std::exchange(isRequested_, true)) {
            return;
        }
        post_(life_.guard([this] {
            if (std::exchange(isRequested_, false)) {
                work_();
            }
        }));
    }
    /// Takes a request back.
    void cancel() { isRequested_ = false; }

private:
    PostTask post_;
    std::function<void()> work_;
    bool isRequested_ = false;
    LifeToken life_;
};

}  // namespace ferrowyn
