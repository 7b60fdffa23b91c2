#include "core/app_window.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/core/session_doubles.h"

namespace ferrowyn {
namespace {

class NumberedElement final : public AXElement {
public:
    explicit NumberedElement(std::size_t number) : number_(number) {}
    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* const numbered = dynamic_cast<const NumberedElement*>(&other);
        return numbered != nullptr && numbered->number_ == number_;
    }
    [[nodiscard]] std::size_t hash() const override { return number_; }

private:
    std::size_t number_;
};

AXElementRef element(std::size_t number) {
    return AXElementRef(std::make_shared<NumberedElement>(number));
}

TEST(AppWindow, ShowsItsTitleWithoutSurroundingWhiteSpace) {
    EXPECT_EQ(testWindow(1, " \t\nInbox (2)\r\n ", "Mail").displayTitle(), "Inbox (2)");
    EXPECT_EQ(testWindow(1, "\u3000受信箱\u00A0", "Mail").displayTitle(), "受信箱");
}

TEST(AppWindow, WithoutATitleShowsItsApplicationsName) {
    EXPECT_EQ(testWindow(1, "", "Mail").displayTitle(), "Mail");
    EXPECT_EQ(testWindow(1, "   ", "Mail").displayTitle(), "Mail");
    EXPECT_EQ(testWindow(1, "\n\u2003", " Mail ").displayTitle(), " Mail ");
}

TEST(AppWindow, FieldsThatTheListIsNotPublishedForTakeNoPartInEquality) {
    const AppWindow window = testWindow(1, "Inbox");
    AppWindow other = window;
    other.axElement = element(4);
    other.bundleIdentifier.reset();
    other.appName = "Other";
    other.isAppFocusedWindow = true;
    other.frame = {1, 2, 3, 4};
    other.bundleURL = "/Applications/Other.app";
    EXPECT_EQ(window, other);
}

TEST(AppWindow, EveryFieldThatTheListIsPublishedForTakesPartInEquality) {
    const AppWindow window = testWindow(1, "Inbox");
    const auto changed = [&](const auto& change) {
        AppWindow copy = window;
        change(copy);
        return copy;
    };
    EXPECT_NE(window, changed([](AppWindow& w) { w.id = 2; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.pid = 2; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.title = "Outbox"; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.isMinimized = true; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.isFullScreen = true; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.isOnActiveSpace = false; }));
    EXPECT_NE(window, changed([](AppWindow& w) { w.zOrder = 7; }));
}

TEST(AppWindow, HashesByIdAndProcessOnly) {
    const std::hash<AppWindow> hash;
    const AppWindow window = testWindow(1, "Inbox");
    AppWindow other = window;
    other.title = "Outbox";
    other.zOrder = 5;
    EXPECT_EQ(hash(window), hash(other));
    other.id = 2;
    EXPECT_NE(hash(window), hash(other));
    other = window;
    other.pid = 2;
    EXPECT_NE(hash(window), hash(other));
}

TEST(AXElementRef, TwoHandlesOfOneElementAreEqualAndHashAlike) {
    EXPECT_EQ(element(7), element(7));
    EXPECT_NE(element(7), element(8));
    EXPECT_EQ(std::hash<AXElementRef>{}(element(7)), std::hash<AXElementRef>{}(element(7)));
}

TEST(AXElementRef, DescribesItselfByItsHash) {
    EXPECT_EQ(element(1234).description(), "AXElementRef(1234)");
}

}  // namespace
}  // namespace ferrowyn
