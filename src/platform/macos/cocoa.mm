#include "platform/macos/cocoa.h"

#include <memory>
#include <utility>

namespace ferrowyn {

Subscription observeNotification(NSNotificationCenter* center, NSNotificationName name,
                                 std::function<void(NSNotification*)> handler) {
    // The queue still delivers what it holds when the observer is removed.
    const auto alive = std::make_shared<const bool>(true);
    const std::weak_ptr<const bool> weakAlive = alive;
    const id<NSObject> token = [center addObserverForName:name
                                                   object:nil
                                                    queue:NSOperationQueue.mainQueue
                                               usingBlock:^(NSNotification* notification) {
                                                 if (!weakAlive.expired()) {
                                                     handler(notification);
                                                 }
                                               }];
    return Subscription([center, token, keptAlive = alive]() mutable {
        keptAlive.reset();
        [center removeObserver:token];
    });
}

}  // namespace ferrowyn
