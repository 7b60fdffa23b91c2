#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <optional>

#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

/// The panel's ground, as it is on the screen.
class AppearanceTest : public ManagedDeskTest {
protected:
    explicit AppearanceTest(const std::string& currentDesktop = "XFCE")
        : ManagedDeskTest(Options{
              .program = {.environment = {{"XDG_CURRENT_DESKTOP", currentDesktop}, {"QT_QPA_PLATFORMTHEME", ""}}}}) {}

    void startXsettings(const std::string& theme) {
        writeTheme(theme);
        xsettings = std::make_unique<ChildProcess>(
            ChildProcess::Options{.command = {"xsettingsd", "-c", server.home().path() + "/xsettings.conf"},
                                  .environment = server.clientEnvironment()});
    }
    void setTheme(const std::string& theme) {
        writeTheme(theme);
        xsettings->signal(SIGHUP);
    }
    /// Between the panel's edge and its first row.
    [[nodiscard]] bool isPanelDark() const {
        const auto place = panelPlace();
        const auto pixel = desktop.pixel(place.x + place.width / 2, place.y + 6);
        const auto green = pixel >> 8U & 0xFFU;
        return green < 0x80;
    }
    void expectPanelToBecome(bool isDark) {
        EXPECT_TRUE(desktop.waitUntil([&] { return isPanelDark() == isDark; })) << "waited for it to change";
    }

    std::unique_ptr<ChildProcess> xsettings;

private:
    void writeTheme(const std::string& theme) const {
        server.home().write("xsettings.conf", "Net/ThemeName \"" + theme + "\"\nXft/Antialias 1\n");
    }
};

TEST_P(AppearanceTest, FollowsTheThemeThatTheDesktopTellsWhileThePanelIsOpen) {
    openWindows(2);
    startXsettings("Adwaita");
    startProgram();
    hold();
    EXPECT_FALSE(isPanelDark());
    setTheme("Adwaita-dark");
    expectPanelToBecome(true);
    setTheme("Adwaita");
    expectPanelToBecome(false);
    setTheme("Adwaita-dark");
    expectPanelToBecome(true);
    letGo();
    expectSwitchTo(window(1));
    hold();
    EXPECT_TRUE(isPanelDark()) << "the frame that was drawn ahead, too";
    xsettings.reset();
    expectPanelToBecome(false);
    letGo();
    expectSwitchTo(window(2));
}

TEST_P(AppearanceTest, ADesktopThatIsDarkAtTheStartHasADarkPanelAtTheFirstPress) {
    openWindows(2);
    startXsettings("Adwaita-dark");
    startProgram();
    hold();
    expectPanelToBecome(true);
    letGo();
    expectSwitchTo(window(1));
}

class PlasmaAppearanceTest : public AppearanceTest {
protected:
    PlasmaAppearanceTest() : AppearanceTest("KDE") {}
    void setColors(const std::string& window) const {
        server.home().write(".config/kdeglobals", "[Colors:Window]\nBackgroundNormal=" + window + "\n");
    }
};

TEST_P(PlasmaAppearanceTest, FollowsTheColorsOfPlasma) {
    setColors("239,240,241");
    openWindows(2);
    startProgram();
    hold();
    EXPECT_FALSE(isPanelDark());
    setColors("32,35,38");
    expectPanelToBecome(true);
    setColors("239,240,241");
    expectPanelToBecome(false);
    letGo();
    expectSwitchTo(window(1));
}

INSTANTIATE_TEST_SUITE_P(X11, AppearanceTest, testing::Values("openbox"), managerName);
INSTANTIATE_TEST_SUITE_P(X11, PlasmaAppearanceTest, testing::Values("openbox"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
