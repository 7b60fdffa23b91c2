// The settings file changed in an editor while the program runs, and then by the program.

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/switching/switching_desk.h"
#include "tests/x11/windows/program_windows.h"

namespace ferrowyn::x11test {
namespace {

using testing::HasSubstr;

class SettingsByHandTest : public DeskTest<testing::Test> {
protected:
    SettingsByHandTest() : DeskTest("openbox") {}

    /// The layout's shortcut in the panel, which stores the next layout.
    void cycleLayout() {
        hold();
        input.chord({key::leftControl, key::l});
        input.tap(key::escape);
        letGo();
        EXPECT_TRUE(desktop.waitForPanel(false));
    }
    void restart() {
        expectCleanEnd();
        startProgram();
    }
    [[nodiscard]] int panelHeight() {
        hold();
        const int height = panelPlace().height;
        input.tap(key::escape);
        letGo();
        EXPECT_TRUE(desktop.waitForPanel(false));
        return height;
    }

    SettingsFile file{server};
};

TEST_F(SettingsByHandTest, WhatWasChangedByHandSurvivesWhatTheProgramStores) {
    constexpr int heightOfHints = 34;
    file.write("[switcher]\nlayout=\"grouped\"\nshowShortcutHints=true\n");
    openWindows(2);
    startProgram();
    const int before = panelHeight();
    file.write("; my own\n[switcher]\nlayout=\"grouped\"\nshowShortcutHints=false\n\n[later]\nunknown=7\n");
    cycleLayout();
    ASSERT_TRUE(file.waitFor("layout=\"grid\"")) << file.text();
    EXPECT_EQ(file.text(), "; my own\n[switcher]\nlayout=\"grid\"\nshowShortcutHints=false\n\n[later]\nunknown=7\n");
    cycleLayout();
    cycleLayout();
    ASSERT_TRUE(file.waitFor("layout=\"grouped\"")) << file.text();
    restart();
    EXPECT_EQ(panelHeight(), before - heightOfHints) << "the change takes effect at the next start";
}

TEST_F(SettingsByHandTest, AFileThatWasDamagedByHandIsKeptAsideAndTheSettingsStay) {
    file.write("; my own\n[switcher]\nlayout=\"list\"\nmaximumVisibleRows=12\n");
    openWindows(2);
    startProgram();
    const std::string damaged("[switcher]\nlayout=\"li\xFF\0", 22);
    file.write(damaged);
    cycleLayout();
    ASSERT_TRUE(file.waitFor("layout=\"grouped\"")) << file.text();
    EXPECT_EQ(file.text(), "; my own\n[switcher]\nlayout=\"grouped\"\nmaximumVisibleRows=12\n");
    std::ifstream aside(file.folder() + "/Ferrowyn.ini.damaged");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(aside), {}), damaged);
    EXPECT_TRUE(program->process().waitForOutput("it was kept as Ferrowyn.ini.damaged"));
}

TEST_F(SettingsByHandTest, AFileThatWasDeletedIsMadeAgain) {
    file.write("[switcher]\nlayout=\"list\"\n");
    openWindows(2);
    startProgram();
    std::filesystem::remove_all(file.folder());
    SettingsFile again(server);
    cycleLayout();
    EXPECT_TRUE(again.waitFor("layout=\"grouped\""));
}

TEST_F(SettingsByHandTest, WhatCannotBeStoredNowIsStoredWithTheNextChange) {
    file.write("[switcher]\nlayout=\"list\"\n");
    const ChildProcess terminal = startClient({"xterm", "-T", "Terminal"});
    ASSERT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 1; }));
    openWindows(1);
    startProgram(2);
    // Not even root can write below a file.
    std::filesystem::remove_all(file.folder());
    server.home().write(".config/Ferrowyn", "in the way");
    hold();
    input.chord({key::leftControl, key::d});
    input.tap(key::escape);
    letGo();
    expectQuiet();
    ASSERT_TRUE(program->process().waitForOutput("Settings cannot be stored in"));
    std::filesystem::remove(file.folder());
    SettingsFile again(server);
    cycleLayout();
    EXPECT_TRUE(again.waitFor("layout=\"grouped\"")) << again.text();
    EXPECT_THAT(again.text(), HasSubstr("favouriteBundleIdentifiers=[")) << "the application that was pinned meanwhile";
}

}  // namespace
}  // namespace ferrowyn::x11test
