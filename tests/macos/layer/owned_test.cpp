#include "platform/macos/owned.h"

#include "platform/macos/cf_cast.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class OwnedTest : public MacFixture {
protected:
    [[nodiscard]] static CFTypeRef make(std::string text) { return fake::copy(fake::Value(std::move(text))); }
    [[nodiscard]] static std::size_t liveCount() { return fake::Objects::shared().liveCount(); }
};

TEST_F(OwnedTest, AnAdoptedObjectIsReleasedOnce) {
    {
        const Owned<CFTypeRef> owned(make("window"));
        EXPECT_TRUE(owned);
        EXPECT_EQ(liveCount(), 1U);
    }
    EXPECT_EQ(liveCount(), 0U);
}

TEST_F(OwnedTest, ARetainedObjectOutlivesItsOtherOwner) {
    Owned<CFTypeRef> first(make("window"));
    const auto second = Owned<CFTypeRef>::retaining(first.get());
    first.reset();
    EXPECT_EQ(liveCount(), 1U);
    EXPECT_EQ(CFGetTypeID(second.get()), CFStringGetTypeID());
}

TEST_F(OwnedTest, MovingHandsTheReferenceOver) {
    Owned<CFTypeRef> first(make("one"));
    Owned<CFTypeRef> second(std::move(first));
    second = Owned<CFTypeRef>(make("two"));
    EXPECT_EQ(liveCount(), 1U) << "the first string went when it was replaced";
    second = Owned<CFTypeRef>();
    EXPECT_EQ(liveCount(), 0U);
}

TEST_F(OwnedTest, NothingIsNeverReleased) {
    Owned<CFTypeRef> nothing(nullptr);
    nothing.reset();
    EXPECT_FALSE(Owned<CFTypeRef>::retaining(nullptr));
    EXPECT_THAT(fake::Objects::shared().takeFaults(), IsEmpty());
}

TEST_F(OwnedTest, AnObjectIsOnlyCastToTheTypeThatItIs) {
    const Owned<CFTypeRef> text(make("window"));
    EXPECT_EQ(castTo<CFStringRef>(text.get()), text.get());
    EXPECT_EQ(castTo<CFNumberRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<CFDictionaryRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<AXUIElementRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<CFStringRef>(nullptr), nullptr);
}

TEST_F(OwnedTest, TheFakeNoticesAReleaseTooMany) {
    const CFTypeRef text = make("window");
    CFRelease(text);
    const volatile CFTypeRef ended = text;  // NOLINT: the second release is the point
    CFRelease(ended);
    CFRelease(kCFBooleanTrue);
    EXPECT_THAT(fake::Objects::shared().takeFaults(),
                ElementsAre(HasSubstr("no object any more"), HasSubstr("belongs to the system")));
}

TEST_F(OwnedTest, TheFakeCountsALeakAndAConstantThatIsRetained) {
    const CFTypeRef text = make("window");
    CFRetain(kCFBooleanTrue);
    EXPECT_EQ(liveCount(), 2U);
    CFRelease(kCFBooleanTrue);
    CFRelease(text);
}

}  // namespace
}  // namespace ferrowyn
