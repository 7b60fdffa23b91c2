#include "platform/macos/mac_background_work.h"

#import <Foundation/Foundation.h>

#include <utility>

namespace ferrowyn {

void MacBackgroundWork::run(std::function<void()> work) {
    workers_.run([task = std::move(work)]() mutable {
        @autoreleasepool {
            task();
            // Destroying what the task holds may autorelease objects too.
            task = nullptr;
        }
    });
}

void MacBackgroundWork::concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) {
    workers_.concurrentPerform(count, [&iteration](std::size_t index) {
        @autoreleasepool {
            iteration(index);
        }
    });
}

void inAutoreleasePool(const std::function<void()>& work) {
    @autoreleasepool {
        work();
    }
}

struct MacActivity::Parts {
    id<NSObject> activity;
};

MacActivity::MacActivity()
    : parts_(new Parts{[NSProcessInfo.processInfo
          beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                            reason:@"Answers the window switcher's shortcut at once"]}) {}

MacActivity::~MacActivity() {
    [NSProcessInfo.processInfo endActivity:parts_->activity];
}

}  // namespace ferrowyn
