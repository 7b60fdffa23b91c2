#include "platform/macos/cocoa.h"

#include <memory>
#include <utility>

#include "core/posted_work.h"

namespace ferrowyn {

Subscription observeNotification(NSNotificationCenter* center, NSNotificationName name,
                                 std::function<void(NSNotification*)> handler) {
    // The queue still delivers what it holds when the observer is removed.
    auto life = std::make_shared<LifeToken>();
    const auto guarded = life->guard(std::move(handler));
    const id<NSObject> token = [center addObserverForName:name
                                                   object:nil
                                                    queue:NSOperationQueue.mainQueue
                                               usingBlock:^(NSNotification* notification) {
                                                 guarded(notification);
                                               }];
    return Subscription([center, token, life = std::move(life)]() mutable {
        life.reset();
        [center removeObserver:token];
    });
}

}  // namespace ferrowyn
