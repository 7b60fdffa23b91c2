#include "tests/macos/objc/mac_test.h"

#include "tests/macos/objc/fakes/services.h"

namespace ferrowyn::test {

void MacTest::TearDown() {
    @autoreleasepool {
        [NSOperationQueue.mainQueue drain];
        EXPECT_EQ(NSNotificationCenter.defaultCenter.observerCount, 0U);
        EXPECT_EQ([NSDistributedNotificationCenter defaultCenter].observerCount, 0U);
        EXPECT_EQ(NSWorkspace.sharedWorkspace.notificationCenter.observerCount, 0U);
        EXPECT_EQ([NSEvent monitorCount], 0U);
        EXPECT_EQ([NSStatusBar itemCount], 0U);
    }
    pool_.reset();
    fake_mac::forgetServices();
    fake_mac::forgetAppKit();
    fake_mac::forgetFoundation();
    EXPECT_EQ(objc_runtime::liveObjectCount(), 0) << objc_runtime::liveObjects();
}

std::string MacTest::text(NSString* string) {
    return string.UTF8String == nullptr ? "(nil)" : string.UTF8String;
}

}  // namespace ferrowyn::test
