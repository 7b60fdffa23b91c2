#include "tests/macos/objc/mac_test.h"

@interface Counted : NSObject
@property(strong) id other;
@property(weak) id weakOther;
@property(copy) int (^block)(void);
@end

@implementation Counted
@end

/// Below a class of the frameworks, which is larger than its declaration says.
@interface FramedCounted : NSView
@property int first;
@property NSRect second;
@end

@implementation FramedCounted
@end

namespace ferrowyn::test {

namespace {

/// What the tests of the layer rely on without looking at it, the leaks that are noticed above all.
class SmallRuntimeTest : public MacTest {};

TEST_F(SmallRuntimeTest, CountsWhatLives) {
    const auto before = objc_runtime::liveObjectCount();
    Counted* __strong object = [[Counted alloc] init];
    EXPECT_EQ(objc_runtime::liveObjectCount(), before + 1);
    EXPECT_NE(objc_runtime::liveObjects().find("Counted: 1"), std::string::npos);
    Counted* __strong second = object;
    object = nil;
    EXPECT_NE(second, nil);
    EXPECT_EQ(objc_runtime::liveObjectCount(), before + 1);
    second = nil;
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
}

TEST_F(SmallRuntimeTest, NoticesObjectsThatHoldEachOther) {
    const auto before = objc_runtime::liveObjectCount();
    Counted* __weak kept = nil;
    @autoreleasepool {
        Counted* const first = [[Counted alloc] init];
        first.other = [[Counted alloc] init];
        static_cast<Counted*>(first.other).other = first;
        kept = first;
    }
    EXPECT_EQ(objc_runtime::liveObjectCount(), before + 2);
    @autoreleasepool {
        kept.other = nil;
    }
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
}

TEST_F(SmallRuntimeTest, ForgetsWeaklyWhatHasGone) {
    @autoreleasepool {
        Counted* const holder = [[Counted alloc] init];
        Counted* __weak weak = nil;
        @autoreleasepool {
            Counted* const held = [[Counted alloc] init];
            weak = held;
            holder.weakOther = held;
            EXPECT_NE(holder.weakOther, nil);
        }
        EXPECT_EQ(weak, nil);
        EXPECT_EQ(holder.weakOther, nil);
    }
}

TEST_F(SmallRuntimeTest, ABlockHoldsWhatItCapturesForAsLongAsItLives) {
    const auto before = objc_runtime::liveObjectCount();
    @autoreleasepool {
        Counted* const owner = [[Counted alloc] init];
        Counted* __weak captured = nil;
        @autoreleasepool {
            Counted* const used = [[Counted alloc] init];
            captured = used;
            const std::string text = "captured by value";
            owner.block = ^{
              return used == nil ? 0 : static_cast<int>(text.size());
            };
        }
        EXPECT_NE(captured, nil);
        @autoreleasepool {
            EXPECT_EQ(owner.block(), 17);
            owner.block = nil;
        }
        EXPECT_EQ(captured, nil);
    }
    EXPECT_EQ(objc_runtime::liveObjectCount(), before);
}

TEST_F(SmallRuntimeTest, VariablesOfASubclassDoNotOverlapThoseOfItsSuperclass) {
    @autoreleasepool {
        FramedCounted* const view = [[FramedCounted alloc] initWithFrame:NSMakeRect(1, 2, 3, 4)];
        view.first = 0x7FFFFFFF;
        view.second = NSMakeRect(5, 6, 7, 8);
        EXPECT_EQ(view.frame.size.height, 4);
        EXPECT_EQ(view.subviews.count, 0U);
        EXPECT_EQ(view.second.origin.x, 5);
        EXPECT_EQ(view.first, 0x7FFFFFFF);
    }
}

TEST_F(SmallRuntimeTest, EndsTheProgramAtAMessageThatNobodyAnswers) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(
        {
            const id object = [[Counted alloc] init];
            [object orderFrontRegardless];
        },
        "unrecognized selector -\\[Counted orderFrontRegardless\\]");
}

}  // namespace

}  // namespace ferrowyn::test
