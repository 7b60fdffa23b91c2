#include "tests/macos/objc/mac_test.h"

#include "tests/macos/objc/fakes/services.h"

namespace ferrowyn::test {

void MacTest::TearDown() {
    @autoreleasepool {
        [NSOperationQueue.mainQueue drain];
        EXPECT_EQ(NSNotificationCenter.defaultCenter.observerCount, 0U);
        EXPECT_EQ([NSDistributedNotificationCenter defaultCenter].observerCount, 0U);
        EXPECT_EQ(NSWorkspace.sharedWorkspace.notificationCenter.observerCount, 0U);
        EXPECT_TRUE(fake_mac::appKit().monitors.empty());
        EXPECT_TRUE(fake_mac::appKit().statusItems.empty());
    }
    pool_.reset();
    fake_mac::forgetServices();
    fake_mac::appKit() = {};
    fake_mac::foundation() = {};
    EXPECT_EQ(objc_runtime::liveObjectCount(), 0) << objc_runtime::liveObjects();
}

std::string MacTest::text(NSString* string) {
    return string.UTF8String == nullptr ? "(nil)" : string.UTF8String;
}

void MacTest::expectToldUntilDropped(const std::function<Subscription(std::function<void()> handler)>& observe,
                                     const std::function<void()>& happen) {
    int count = 0;
    auto subscription = observe([&] { ++count; });
    EXPECT_EQ(count, 0);
    happen();
    EXPECT_EQ(count, 1);
    subscription.reset();
    happen();
    EXPECT_EQ(count, 1) << "the token is dropped";
}

NSMenuItem* MacTest::rowTitled(const std::string& title) {
    for (NSMenuItem* item in [NSStatusBar onlyItem].menu.itemArray) {
        if (title == text(item.title)) {
            return item;
        }
    }
    return nil;
}

std::vector<std::string> MacTest::shownRows() {
    std::vector<std::string> lines;
    for (NSMenuItem* item in [NSStatusBar onlyItem].menu.itemArray) {
        lines.push_back(item.separatorItem ? "-" : item.view != nil ? "header" : text(item.title));
    }
    return lines;
}

}  // namespace ferrowyn::test
