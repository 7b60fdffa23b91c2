#include <limits>
#include <type_traits>

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
using testing::Optional;

class OwnedTest : public MacFixture {
protected:
    [[nodiscard]] static CFTypeRef make(std::string text) { return fake::copy(fake::Value(std::move(text))); }
    [[nodiscard]] static std::size_t liveCount() { return fake::Objects::shared().liveCount(); }
};

TEST_F(OwnedTest, AnObjectIsReleasedOnceByTheLastThatOwnsIt) {
    {
        Owned<CFTypeRef> adopted(make("window"));
        EXPECT_TRUE(adopted);
        const auto retained = Owned<CFTypeRef>::retaining(adopted.get());
        adopted.reset();
        EXPECT_EQ(liveCount(), 1U);
        EXPECT_EQ(CFGetTypeID(retained.get()), CFStringGetTypeID());
    }
    EXPECT_EQ(liveCount(), 0U);
    Owned<CFTypeRef> first(make("one"));
    Owned<CFTypeRef> second(std::move(first));
    second = Owned<CFTypeRef>(make("two"));
    EXPECT_EQ(liveCount(), 1U) << "the first string went when it was replaced";
    second = Owned<CFTypeRef>();
    EXPECT_EQ(liveCount(), 0U);
    Owned<CFTypeRef>(nullptr).reset();
    EXPECT_FALSE(Owned<CFTypeRef>::retaining(nullptr));
}

TEST_F(OwnedTest, AnObjectIsOnlyCastToTheTypeThatItIs) {
    const Owned<CFTypeRef> text(make("window"));
    EXPECT_EQ(castTo<CFStringRef>(text.get()), text.get());
    EXPECT_EQ(castTo<CFNumberRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<CFDictionaryRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<AXUIElementRef>(text.get()), nullptr);
    EXPECT_EQ(castTo<CFStringRef>(nullptr), nullptr);
}

TEST_F(OwnedTest, TheFakeNoticesAReleaseTooManyAndCountsWhatIsRetained) {
    const CFTypeRef text = make("window");
    CFRetain(kCFBooleanTrue);
    EXPECT_EQ(liveCount(), 2U);
    CFRelease(kCFBooleanTrue);
    CFRelease(text);
    const volatile CFTypeRef ended = text;  // NOLINT: the second release is the point
    CFRelease(ended);
    CFRelease(kCFBooleanTrue);
    EXPECT_THAT(fake::Objects::shared().takeFaults(),
                ElementsAre(HasSubstr("no object any more"), HasSubstr("belongs to the system")));
}

class CFValuesTest : public MacFixture {
protected:
    /// What the reader makes of each value.
    template <typename Result>
    static void expectRead(std::optional<Result> (*read)(CFTypeRef),
                           const std::vector<std::pair<Value, std::type_identity_t<std::optional<Result>>>>& table) {
        for (std::size_t row = 0; row < table.size(); ++row) {
            EXPECT_EQ(read(Owned<CFTypeRef>(fake::copy(table[row].first)).get()), table[row].second) << "row " << row;
        }
        EXPECT_EQ(read(nullptr), std::nullopt);
    }
    static Value number(std::int64_t value) { return {value}; }
};

TEST_F(CFValuesTest, TextIsReadAsUtf8WhateverItsLength) {
    expectRead<std::string>(cf::string, {
                                            {std::string("Straße – 東京 🦀"), "Straße – 東京 🦀"},
                                            {std::string(), ""},
                                            {std::string(5000, 'x'), std::string(5000, 'x')},
                                            {std::string("a\0b", 3), std::string("a\0b", 3)},
                                            {std::u16string{u'a', 0xD83E, u'b'}, "a?b"},
                                            {number(7), std::nullopt},
                                            {Value(), std::nullopt},
                                        });
}

TEST_F(CFValuesTest, NumbersAreReadWhereTheyFit) {
    constexpr std::int64_t smallest = std::numeric_limits<std::int32_t>::min();
    // A number counts by its Boolean value.
    expectRead<bool>(cf::boolean, {{true, true},
                                   {false, false},
                                   {number(1), true},
                                   {number(-3), true},
                                   {number(0), false},
                                   {0.5, true},
                                   {std::string("true"), std::nullopt}});
    expectRead<WindowId>(cf::windowId, {{number(0), 0U},
                                        {number(4294967295), 4294967295U},
                                        {number(4294967296), std::nullopt},
                                        {number(-1), std::nullopt},
                                        {7.0, std::nullopt}});
    expectRead<std::int32_t>(cf::int32, {{number(smallest), std::int32_t{smallest}},
                                         {number(2147483648), std::nullopt},
                                         {std::string("7"), std::nullopt}});
    expectRead<std::int64_t>(cf::int64, {{number(2147483648), 2147483648}});
    expectRead<double>(cf::real, {{number(1), 1.0}, {0.25, 0.25}, {true, std::nullopt}});
}

TEST_F(CFValuesTest, GeometryIsReadSideBySide) {
    expectRead<Rect>(cf::rect, {{Rect{1, 2, 3, 4}, Rect{1, 2, 3, 4}}, {AccessibilityRect{}, std::nullopt}});
    expectRead<Point>(cf::point,
                      {{Point{-5, 6}, Point{-5, 6}}, {Size{1, 2}, std::nullopt}, {kAXErrorNoValue, std::nullopt}});
    expectRead<Size>(cf::size, {{Size{7, 8}, Size{7, 8}}, {Point{1, 2}, std::nullopt}});
}

TEST_F(CFValuesTest, StringsAreMadeFromWellFormedTextOnly) {
    const auto made = cf::makeString("AXTitleChanged");
    EXPECT_THAT(cf::string(made.get()), Optional(Eq("AXTitleChanged")));
    EXPECT_FALSE(cf::makeString("\xFF"));
}

}  // namespace
}  // namespace ferrowyn
