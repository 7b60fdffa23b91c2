// The program's icon while the tray that shows it ends and starts again.

#include <algorithm>
#include <csignal>

#include "tests/x11/desk_test.h"
#include "tests/x11/harness/private_bus.h"
#include "tests/x11/harness/tray_host_process.h"
#include "tests/x11/program_windows.h"

namespace ferrowyn::x11test {
namespace {

constexpr TestDesktop::Place upperEdge{0, 0, 1280, 32};

class TrayRestartsTest : public DeskTest<testing::Test> {
protected:
    TrayRestartsTest() : DeskTest("openbox") {}

    using Pixels = std::vector<std::uint32_t>;

    /// Waits until this holds of the screen's upper edge, and the edge has not changed for a while.
    [[nodiscard]] std::optional<Pixels> waitForEdge(const std::function<bool(const Pixels&)>& isWanted) {
        constexpr int looks = 5;
        constexpr milliseconds betweenLooks{50};
        int timesSeen = 0;
        Pixels last;
        const Deadline deadline(2 * patience);
        while (timesSeen < looks && !deadline.hasPassed()) {
            const auto now = desktop.pixels(upperEdge);
            timesSeen = isWanted(now) && now == last ? timesSeen + 1 : 0;
            last = now;
            static_cast<void>(desktop.waitUntil([] { return false; }, betweenLooks));
        }
        return timesSeen == looks ? std::optional(last) : std::nullopt;
    }
    /// Around all pixels in which the two pictures of the upper edge differ.
    [[nodiscard]] static TestDesktop::Place difference(const Pixels& one, const Pixels& other) {
        int left = upperEdge.width, right = 0, top = upperEdge.height, bottom = 0;
        for (int index = 0; index < static_cast<int>(one.size()); ++index) {
            if (one[static_cast<std::size_t>(index)] != other[static_cast<std::size_t>(index)]) {
                left = std::min(left, index % upperEdge.width);
                right = std::max(right, index % upperEdge.width);
                top = std::min(top, index / upperEdge.width);
                bottom = std::max(bottom, index / upperEdge.width);
            }
        }
        return {left, top, right - left + 1, bottom - top + 1};
    }
    /// Where the pointer is over nothing that could follow it.
    void parkPointer() { input.movePointer(640, 600); }

    ProgramWindows own{*this};
};

TEST_F(TrayRestartsTest, AHostOfStatusNotifiersShowsTheIconAgain) {
    const PrivateBus bus(server);
    programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    auto host = std::make_unique<TrayHostProcess>(server, bus, "lxqt-panel");
    parkPointer();
    ASSERT_TRUE(desktop.waitUntil([&] { return !desktop.clientList().empty(); })) << host->process().output();
    const auto empty = waitForEdge([](const auto&) { return true; });
    ASSERT_TRUE(empty) << "waited for the panel to be drawn";
    openWindows(2);
    startProgram();
    const auto shown = waitForEdge([&](const auto& now) { return now != *empty; });
    ASSERT_TRUE(shown) << "waited for the icon; it said: " << program->process().output();
    const auto icon = difference(*empty, *shown);
    EXPECT_LE(icon.width, upperEdge.height) << "one icon";
    ASSERT_TRUE(own.openMenuAt(icon));

    host->process().signal(SIGKILL);
    ASSERT_TRUE(host->process().waitForExit());
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    own.expectSwitching();

    host = std::make_unique<TrayHostProcess>(server, bus, "lxqt-panel");
    parkPointer();
    ASSERT_TRUE(waitForEdge([&](const auto& now) { return now == *shown; })) << "waited for the icon to be back";
    const auto menu = own.openMenuAt(icon);
    ASSERT_TRUE(menu);
    own.clickRow(*menu, "Settings…");
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
}

TEST_F(TrayRestartsTest, ATrayThatEmbedsWindowsShowsTheIconAgain) {
    auto tray = std::make_unique<TrayHostProcess>(server, "trayer");
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.openMenu());
    tray->process().signal(SIGKILL);
    ASSERT_TRUE(tray->process().waitForExit());
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    own.expectSwitching();
    tray = std::make_unique<TrayHostProcess>(server, "trayer");
    EXPECT_TRUE(own.choose("Settings…"));
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
}

}  // namespace
}  // namespace ferrowyn::x11test
