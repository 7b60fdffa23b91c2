#include "platform/x11/x11_applications.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ferrowyn {
namespace {

constexpr Pid ownProcess = 4242;

/// Two applications of a suite are installed, which its windows name by their classes.
std::optional<X11InstalledApplication> installedSuite(const X11ApplicationIdentity& identity) {
    if (identity.wmClassName == "SuiteWriter" || identity.wmClassName == "suitewriter") {
        return X11InstalledApplication{"suite-writer", "Writer", "/applications/suite-writer.desktop"};
    }
    if (identity.wmClassName == "SuiteCalc") {
        return X11InstalledApplication{"suite-calc", "Calc", "/applications/suite-calc.desktop"};
    }
    return std::nullopt;
}

class X11ApplicationDirectoryTest : public testing::Test {
protected:
    X11ApplicationDirectoryTest() { windows.reserve(16); }

    X11WindowFacts& open(Pid process, const std::string& windowClass, xcb_window_t transientFor = XCB_WINDOW_NONE) {
        X11WindowFacts window;
        window.id = static_cast<xcb_window_t>(windows.size() + 1);
        window.process = process;
        window.identity.wmClassName = windowClass;
        window.transientFor = transientFor;
        window.isTransient = transientFor != XCB_WINDOW_NONE;
        return windows.emplace_back(window);
    }
    [[nodiscard]] Pid numberOf(const X11WindowFacts& window) const {
        return directory.numberFor(window, [this](xcb_window_t id) {
            const auto found = std::ranges::find(windows, id, &X11WindowFacts::id);
            return found == windows.end() ? nullptr : &*found;
        });
    }

    X11ApplicationDirectory directory{installedSuite, ownProcess};
    std::vector<X11WindowFacts> windows;
};

TEST_F(X11ApplicationDirectoryTest, WindowsOfOneClassAreOneApplicationWithTheNumberOfItsFirstProcess) {
    EXPECT_EQ(numberOf(open(100, "Terminal")), 100);
    EXPECT_EQ(numberOf(open(200, "Terminal")), 100);
    EXPECT_EQ(numberOf(open(200, "Editor")), 200);
}

TEST_F(X11ApplicationDirectoryTest, TheInstanceStandsInForAMissingClass) {
    auto& first = open(100, "");
    auto& second = open(200, "");
    first.identity.wmClassInstance = second.identity.wmClassInstance = "terminal";
    EXPECT_EQ(numberOf(first), 100);
    EXPECT_EQ(numberOf(second), 100);
}

TEST_F(X11ApplicationDirectoryTest, WindowsThatSayNothingAreOfTheirProcess) {
    EXPECT_EQ(numberOf(open(100, "")), 100);
    EXPECT_EQ(numberOf(open(200, "")), 200);
    EXPECT_EQ(numberOf(open(100, "")), 100);
}

TEST_F(X11ApplicationDirectoryTest, TwoInstalledApplicationsOfOneProcessHaveNumbersOfTheirOwn) {
    const auto writer = numberOf(open(100, "SuiteWriter"));
    const auto calc = numberOf(open(100, "SuiteCalc"));
    EXPECT_EQ(writer, 100);
    EXPECT_GE(calc, X11ApplicationDirectory::firstArtificialNumber) << "no process can have it";
    EXPECT_EQ(numberOf(open(200, "suitewriter")), writer) << "the desktop file counts, not how the window names it";
    EXPECT_EQ(numberOf(open(300, "SuiteCalc")), calc);
    EXPECT_EQ(directory.describe(writer, {&windows[0], &windows[2]}).localizedName, "Writer");
    EXPECT_EQ(directory.describe(calc, {&windows[1]}).localizedName, "Calc");
    EXPECT_EQ(directory.describe(calc, {&windows[1]}).bundleURL, "/applications/suite-calc.desktop");
}

TEST_F(X11ApplicationDirectoryTest, AProcessWithTheNumberOfAnEarlierApplicationGetsAnother) {
    EXPECT_EQ(numberOf(open(100, "Terminal")), 100);
    windows.clear();
    const auto editor = numberOf(open(100, "Editor"));
    EXPECT_NE(editor, 100);
    EXPECT_EQ(numberOf(open(300, "Editor")), editor);
    EXPECT_EQ(numberOf(open(400, "Terminal")), 100);
}

TEST_F(X11ApplicationDirectoryTest, ADialogIsOfTheApplicationOfItsWindowInTheSameProcess) {
    const auto document = open(100, "SuiteCalc").id;
    const auto dialog = open(100, "Suite", document).id;
    const auto& nested = open(100, "Suite", dialog);
    EXPECT_EQ(numberOf(windows[1]), numberOf(windows[0]));
    EXPECT_EQ(numberOf(nested), numberOf(windows[0]));
    EXPECT_NE(numberOf(open(200, "Chooser", document)), numberOf(windows[0])) << "it is another program's";
    EXPECT_NE(numberOf(open(100, "Suite", 77)), numberOf(windows[0])) << "its window is not listed";
}

TEST_F(X11ApplicationDirectoryTest, DialogsThatBelongToEachOtherAreNoEndlessQuestion) {
    open(100, "Editor", 2);
    open(100, "Editor", 1);
    EXPECT_EQ(numberOf(windows[0]), 100);
    EXPECT_EQ(numberOf(windows[1]), 100);
}

TEST_F(X11ApplicationDirectoryTest, TheOwnProcessHasItsOwnNumberAndNobodyElseHas) {
    EXPECT_EQ(numberOf(open(100, "Ferrowyn")), 100);
    EXPECT_EQ(numberOf(open(ownProcess, "Ferrowyn")), ownProcess);
    EXPECT_EQ(numberOf(open(ownProcess, "Settings")), ownProcess);
}

TEST_F(X11ApplicationDirectoryTest, APlainNameComesFromTheClassOrTheProcess) {
    EXPECT_EQ(directory.describe(7, {&open(100, "Terminal")}).localizedName, "Terminal");
    // Process 1 has a name on every machine; the application's number has none.
    auto& unnamed = open(1, "");
    EXPECT_TRUE(
        directory.describe(X11ApplicationDirectory::firstArtificialNumber, {&unnamed}).localizedName.has_value());
}

}  // namespace
}  // namespace ferrowyn
