#include "platform/macos/mac_activity.h"

#import <Foundation/Foundation.h>

namespace ferrowyn {

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
