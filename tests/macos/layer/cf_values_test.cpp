#include <limits>

#include "platform/macos/cf_values.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using fake::AccessibilityRect;
using fake::Value;
using testing::ElementsAre;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Optional;

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

class CFValuesTest : public MacFixture {
protected:
    [[nodiscard]] static Owned<CFTypeRef> make(const Value& value) { return Owned<CFTypeRef>(fake::copy(value)); }
    [[nodiscard]] static Value number(std::int64_t value) { return {value}; }
};

TEST_F(CFValuesTest, TextIsReadAsUtf8WhateverItsLength) {
    EXPECT_THAT(cf::string(make(std::string("Straße – 東京 🦀")).get()),
                Optional(Eq("Straße – 東京 🦀")));
    EXPECT_THAT(cf::string(make(std::string()).get()), Optional(Eq("")));
    EXPECT_THAT(cf::string(make(std::string(5000, 'x')).get()), Optional(Eq(std::string(5000, 'x'))));
    EXPECT_THAT(cf::string(make(std::string("a\0b", 3)).get()), Optional(Eq(std::string("a\0b", 3))));
}

TEST_F(CFValuesTest, HalfASurrogatePairDoesNotLoseTheRestOfATitle) {
    EXPECT_THAT(cf::string(make(std::u16string{u'a', 0xD83E, u'b'}).get()), Optional(Eq("a?b")));
}

TEST_F(CFValuesTest, WhatIsOfAnotherTypeIsNothing) {
    EXPECT_EQ(cf::string(make(number(7)).get()), std::nullopt);
    EXPECT_EQ(cf::boolean(make(std::string("true")).get()), std::nullopt);
    EXPECT_EQ(cf::int32(make(std::string("7")).get()), std::nullopt);
    EXPECT_EQ(cf::real(make(true).get()), std::nullopt);
    EXPECT_EQ(cf::rect(make(AccessibilityRect{}).get()), std::nullopt);
    EXPECT_EQ(cf::point(make(Size{1, 2}).get()), std::nullopt);
    EXPECT_EQ(cf::size(make(Point{1, 2}).get()), std::nullopt);
    EXPECT_EQ(cf::point(make(kAXErrorNoValue).get()), std::nullopt);
    EXPECT_EQ(cf::string(nullptr), std::nullopt);
    EXPECT_EQ(cf::boolean(nullptr), std::nullopt);
    EXPECT_EQ(cf::windowId(nullptr), std::nullopt);
    EXPECT_EQ(cf::string(make(Value()).get()), std::nullopt);
}

TEST_F(CFValuesTest, ANumberCountsByItsBooleanValue) {
    EXPECT_THAT(cf::boolean(make(true).get()), Optional(true));
    EXPECT_THAT(cf::boolean(make(false).get()), Optional(false));
    EXPECT_THAT(cf::boolean(make(number(1)).get()), Optional(true));
    EXPECT_THAT(cf::boolean(make(number(-3)).get()), Optional(true));
    EXPECT_THAT(cf::boolean(make(number(0)).get()), Optional(false));
    EXPECT_THAT(cf::boolean(make(0.5).get()), Optional(true));
}

TEST_F(CFValuesTest, AWindowNumberIsAnUnsignedNumberOf32Bits) {
    EXPECT_THAT(cf::windowId(make(number(0)).get()), Optional(0U));
    EXPECT_THAT(cf::windowId(make(number(4294967295)).get()), Optional(4294967295U));
    EXPECT_EQ(cf::windowId(make(number(4294967296)).get()), std::nullopt);
    EXPECT_EQ(cf::windowId(make(number(-1)).get()), std::nullopt);
    EXPECT_EQ(cf::windowId(make(7.0).get()), std::nullopt) << "no whole number";
}

TEST_F(CFValuesTest, ANumberThatDoesNotFitIsNothing) {
    EXPECT_THAT(cf::int32(make(number(-2147483648)).get()), Optional(std::numeric_limits<std::int32_t>::min()));
    EXPECT_EQ(cf::int32(make(number(2147483648)).get()), std::nullopt);
    EXPECT_THAT(cf::int64(make(number(2147483648)).get()), Optional(2147483648));
    EXPECT_THAT(cf::real(make(number(1)).get()), Optional(1.0));
    EXPECT_THAT(cf::real(make(0.25).get()), Optional(0.25));
}

TEST_F(CFValuesTest, GeometryIsReadSideBySide) {
    EXPECT_THAT(cf::rect(make(Rect{1, 2, 3, 4}).get()), Optional(Rect{1, 2, 3, 4}));
    EXPECT_THAT(cf::point(make(Point{-5, 6}).get()), Optional(Point{-5, 6}));
    EXPECT_THAT(cf::size(make(Size{7, 8}).get()), Optional(Size{7, 8}));
}

TEST_F(CFValuesTest, StringsAreMadeFromWellFormedTextOnly) {
    const auto made = cf::makeString("AXTitleChanged");
    EXPECT_THAT(cf::string(made.get()), Optional(Eq("AXTitleChanged")));
    EXPECT_FALSE(cf::makeString("\xFF"));
}

}  // namespace
}  // namespace ferrowyn
