#include "platform/x11/x11_tray_icon.h"

#include <QToolTip>
#include <algorithm>

#include "tests/x11/adapter/tray_fixture.h"
#include "ui/menu/popup_status_item.h"

namespace ferrowyn::x11test {
namespace {

/// The icon alone, as it is drawn, in a tray that does as it is told.
class TrayEmbeddingTest : public testing::Test {
protected:
    TrayEmbeddingTest() : rig({.hasBus = false, .draws = traySymbol}) {}

    [[nodiscard]] std::optional<xcb_window_t> docked(ScriptedTray& tray) {
        std::optional<xcb_window_t> window;
        const bool isThere = TrayRig::runUntil([&] {
            window = tray.dockedWindow();
            return window && rig.icon->isShown();
        });
        return isThere ? window : std::nullopt;
    }
    /// Whether the icon's place shows exactly this colour somewhere, and the tray's ground around it.
    [[nodiscard]] bool shows(std::uint32_t color) const {
        const auto pixels = rig.desktop.pixels({20, 2, 28, 28});
        const auto has = [&](std::uint32_t wanted) {
            return std::any_of(pixels.begin(), pixels.end(),
                               [wanted](std::uint32_t pixel) { return (pixel & 0xFFFFFFU) == wanted; });
        };
        return has(color) && has(0x336699);
    }

    TrayRig rig;
};

TEST_F(TrayEmbeddingTest, TheIconHasTheTraysColourOnTheTraysGround) {
    ScriptedTray tray(rig.server.display(), {.textColor = std::array<std::uint32_t, 3>{0xFFFF, 0x8080, 0}});
    ASSERT_TRUE(docked(tray));
    EXPECT_TRUE(TrayRig::runUntil([&] { return shows(0xFF8000); }));
    tray.setTextColor({0, 0xFFFF, 0});
    EXPECT_TRUE(TrayRig::runUntil([&] { return shows(0x00FF00); })) << "also when the tray's theme changes";
}

TEST_F(TrayEmbeddingTest, TheIconStillHearsClicksWhenItIsTakenForAWindowOfTheDesktop) {
    ScriptedTray tray(rig.server.display(), {});
    const auto window = docked(tray);
    ASSERT_TRUE(window);
    // As when a client names the icon as the window manager's window.
    rig.events->watch(*window);
    rig.events->flush();
    rig.input.click(34, 16, 1);
    EXPECT_TRUE(TrayRig::runUntil([&] { return rig.item->openPopup() != nullptr; }));
}

TEST_F(TrayEmbeddingTest, ATrayThatNamesNoColourGetsOneThatDoesOnAnyGround) {
    ScriptedTray tray(rig.server.display(), {});
    const auto window = docked(tray);
    ASSERT_TRUE(window);
    EXPECT_EQ(tray.depthOf(*window), 24);
    EXPECT_TRUE(TrayRig::runUntil([&] { return shows(0x1C1D21) || shows(0xF3F4F6); }));
}

TEST_F(TrayEmbeddingTest, ATrayThatOffersAlphaGetsAWindowWithAlpha) {
    ScriptedTray tray(rig.server.display(), {.offersAlpha = true});
    const auto window = docked(tray);
    ASSERT_TRUE(window);
    EXPECT_EQ(tray.depthOf(*window), 32);
}

TEST_F(TrayEmbeddingTest, TheWindowSaysWhoseItIs) {
    ScriptedTray tray(rig.server.display(), {});
    rig.icon->setToolTip("Ferrowyn — shortcut disabled by the system");
    const auto window = docked(tray);
    ASSERT_TRUE(window);
    EXPECT_EQ(rig.desktop.text(*window, "WM_CLASS"), std::string("ferrowyn\0Ferrowyn\0", 18));
    EXPECT_EQ(rig.desktop.text(*window, "_NET_WM_NAME"), "Ferrowyn — shortcut disabled by the system");
    EXPECT_EQ(rig.desktop.cardinals(*window, "_XEMBED_INFO"), (std::vector<std::uint32_t>{0, 1}));
}

TEST_F(TrayEmbeddingTest, AnotherSymbolIsDrawnAtOnce) {
    ScriptedTray tray(rig.server.display(), {.textColor = std::array<std::uint32_t, 3>{0xFFFF, 0xFFFF, 0xFFFF}});
    ASSERT_TRUE(docked(tray));
    ASSERT_TRUE(TrayRig::runUntil([&] { return shows(0xFFFFFF); }));
    const auto before = rig.desktop.pixels({20, 2, 28, 28});
    rig.icon->setIcon("exclamationmark.triangle");
    EXPECT_TRUE(TrayRig::runUntil([&] { return rig.desktop.pixels({20, 2, 28, 28}) != before && shows(0xFFFFFF); }));
}

TEST_F(TrayEmbeddingTest, AnotherTrayThatTakesOverGetsTheIcon) {
    ScriptedTray first(rig.server.display(), {});
    const auto before = docked(first);
    ASSERT_TRUE(before);
    ScriptedTray second(rig.server.display(), {});
    const auto after = docked(second);
    ASSERT_TRUE(after);
    EXPECT_NE(*after, *before);
}

TEST_F(TrayEmbeddingTest, ATrayThatCrashesTakesTheIconAlongAndTheNextOneGetsIt) {
    auto tray = std::make_unique<ScriptedTray>(rig.server.display(), ScriptedTray::Options{});
    ASSERT_TRUE(docked(*tray));
    tray.reset();
    ASSERT_TRUE(TrayRig::runUntil([&] { return !rig.icon->isShown(); }));
    ScriptedTray next(rig.server.display(), {});
    EXPECT_TRUE(docked(next));
}

TEST_F(TrayEmbeddingTest, AnIconThatIsGivenBackAsksAgain) {
    ScriptedTray tray(rig.server.display(), {});
    const auto before = docked(tray);
    ASSERT_TRUE(before);
    tray.letGo();
    std::optional<xcb_window_t> again;
    EXPECT_TRUE(TrayRig::runUntil([&] {
        again = tray.dockedWindow();
        return again && again != before;
    }));
}

TEST_F(TrayEmbeddingTest, WhoOnlySaysThatItIsATrayDoesNotGetTheIcon) {
    ScriptedTray tray(rig.server.display(), {});
    const auto window = docked(tray);
    ASSERT_TRUE(window);
    xcb_client_message_event_t claim{};
    claim.response_type = XCB_CLIENT_MESSAGE;
    claim.format = 32;
    claim.window = rig.desktop.root();
    claim.type = rig.desktop.atom("MANAGER");
    claim.data.data32[1] = rig.desktop.atom("_NET_SYSTEM_TRAY_S0");
    claim.data.data32[2] = rig.desktop.root();
    xcb_send_event(rig.desktop.connection(), 0, rig.desktop.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&claim));
    xcb_flush(rig.desktop.connection());
    // Drawn only after the claim has been heard.
    rig.icon->setIcon("exclamationmark.triangle");
    tray.setTextColor({0, 0xFFFF, 0});
    EXPECT_TRUE(TrayRig::runUntil([&] { return shows(0x00FF00); }));
    EXPECT_TRUE(rig.desktop.isViewable(*window));
    EXPECT_TRUE(rig.icon->isShown());
}

TEST_F(TrayEmbeddingTest, TheTooltipIsShownWhileThePointerRestsOnTheIcon) {
    ScriptedTray tray(rig.server.display(), {});
    rig.icon->setToolTip("Ferrowyn — secure input is active, shortcut paused");
    ASSERT_TRUE(docked(tray));
    rig.input.movePointer(30, 15);
    ASSERT_TRUE(TrayRig::runUntil([] { return QToolTip::isVisible(); }));
    EXPECT_EQ(QToolTip::text(), "Ferrowyn — secure input is active, shortcut paused");
    rig.input.movePointer(600, 400);
    EXPECT_TRUE(TrayRig::runUntil([] { return !QToolTip::isVisible(); }));
}

TEST_F(TrayEmbeddingTest, TheWheelOnTheIconOpensNothing) {
    ScriptedTray tray(rig.server.display(), {});
    ASSERT_TRUE(docked(tray));
    constexpr std::uint8_t wheelUp = 4;
    constexpr std::uint8_t rightButton = 3;
    bool wasOpen = false;
    rig.icon->setPressHandler([&](const Rect&) { wasOpen = true; });
    rig.input.click(30, 15, wheelUp);
    rig.icon->setPressHandler([&](const Rect& anchor) {
        EXPECT_FALSE(wasOpen);
        EXPECT_EQ(anchor, (Rect{20, 2, 28, 28})) << "the icon's rectangle on the root window";
        wasOpen = true;
    });
    rig.input.click(30, 15, rightButton);
    EXPECT_TRUE(TrayRig::runUntil([&] { return wasOpen; }));
}

}  // namespace
}  // namespace ferrowyn::x11test
