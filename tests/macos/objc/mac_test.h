#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/published.h"
#include "tests/macos/objc/fakes/appkit.h"
#include "tests/macos/objc/fakes/services.h"
#include "tests/macos/objc/runtime/objects.h"

namespace ferrowyn::test {

/// A Mac on which nothing has happened yet. When the test ends, nothing that it or the layer made may be left: no
/// observer, no monitor, no item in the menu bar, no object at all.
class MacTest : public testing::Test {
protected:
    void TearDown() override {
        @autoreleasepool {
            [NSOperationQueue.mainQueue drain];
            EXPECT_EQ(NSNotificationCenter.defaultCenter.observerCount, 0U);
            EXPECT_EQ([NSDistributedNotificationCenter defaultCenter].observerCount, 0U);
            EXPECT_EQ(NSWorkspace.sharedWorkspace.notificationCenter.observerCount, 0U);
            EXPECT_TRUE(fake_mac::appKit().monitors.empty());
            EXPECT_TRUE(fake_mac::appKit().statusItems.empty());
        }
        pool_.reset();
        fake_mac::services() = {};
        fake_mac::appKit() = {};
        fake_mac::foundation() = {};
        EXPECT_EQ(objc_runtime::liveObjectCount(), 0) << objc_runtime::liveObjects();
    }

    [[nodiscard]] static std::string text(NSString* string) { return string == nil ? "(nil)" : string.UTF8String; }
    /// Expects one call of the handler for each `happen`, until the token is dropped.
    static void expectToldUntilDropped(const std::function<Subscription(std::function<void()> handler)>& observe,
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

    // Of the menu of the only item in the menu bar:
    [[nodiscard]] static NSMenuItem* rowTitled(const std::string& title) {
        for (NSMenuItem* item in [NSStatusBar onlyItem].menu.itemArray) {
            if (title == text(item.title)) {
                return item;
            }
        }
        return nil;
    }
    /// One line a row: what the user sees.
    [[nodiscard]] static std::vector<std::string> shownRows() {
        std::vector<std::string> lines;
        for (NSMenuItem* item in [NSStatusBar onlyItem].menu.itemArray) {
            lines.push_back(item.separatorItem ? "-" : item.view != nil ? "header" : text(item.title));
        }
        return lines;
    }

private:
    /// For what the test autoreleases outside the callbacks of the system, which have their own pools.
    std::optional<objc_runtime::AutoreleasePool> pool_{std::in_place};
};

}  // namespace ferrowyn::test
