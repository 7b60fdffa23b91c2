#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/x11/desk_test.h"
#include "tests/x11/harness/application_process.h"

namespace ferrowyn::x11test {
namespace {

/// Which windows are one application: told from outside by which come first as those of the active application, and by
/// the application's name, which the filter matches.
class ApplicationIdentityTest : public ManagedDeskTest {
protected:
    void install(const std::string& id, const std::string& name, const std::string& windowClass) {
        server.home().write(".local/share/applications/" + id + ".desktop",
                            "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + id +
                                "\nStartupWMClass=" + windowClass + "\n");
    }
    const std::vector<xcb_window_t>& start(const std::string& name, const std::vector<std::string>& titles) {
        applications_.push_back(std::make_unique<ApplicationProcess>(server, name, titles));
        return applications_.back()->windows();
    }
    /// Makes the windows active one after the other and starts the program; the last one leads its list.
    void startHaving(const std::vector<xcb_window_t>& leastRecentFirst) {
        for (const auto each : leastRecentFirst) {
            makeActive(each);
        }
        startProgram(leastRecentFirst.size());
        ASSERT_TRUE(program->waitForList(leastRecentFirst.size(), leastRecentFirst.back()))
            << "it said: " << program->process().output();
    }

private:
    std::vector<std::unique_ptr<ApplicationProcess>> applications_;
};

TEST_P(ApplicationIdentityTest, WindowsOfSeveralProcessesWithOneClassAreOneApplication) {
    const auto first = start("Terminal", {"First shell"}).front();
    const auto second = start("Terminal", {"Second shell"}).front();
    const auto song = start("Player", {"Song"}).front();
    startHaving({first, song, second});
    // Rows: the terminals, then the player.
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(first);
}

TEST_P(ApplicationIdentityTest, AProcessWithWindowsOfTwoDesktopEntriesIsTwoApplications) {
    install("suite-writer", "Brief", "SuiteWriter");
    install("suite-calc", "Quartz", "SuiteCalc");
    const auto suite = start("SuiteWriter", {"Document", "--name", "SuiteCalc", "Table"});
    const auto song = start("Player", {"Song"}).front();
    startHaving({suite[1], song, suite[0]});
    // Rows: the active writer's only window, the player, the calculator.
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(song);
    // Nothing but the entry's name has a q.
    hold();
    type({key::q, key::u, key::a});
    input.tap(key::enter);
    expectSwitchTo(suite[1]);
    letGo();
    hold();
    type({key::b, key::r, key::i});
    input.tap(key::enter);
    expectSwitchTo(suite[0]);
    letGo();
}

TEST_P(ApplicationIdentityTest, AWindowThatBecomesOneOfAnotherApplicationIsReachedAsThat) {
    install("suite-calc", "Quartz", "SuiteCalc");
    const auto song = start("Player", {"Song"}).front();
    openActive({.title = "Start centre", .className = "SuiteStart"});
    openActive({.title = "Notes", .className = "SuiteStart"});
    startHaving({song, window(2), window(1)});
    const std::string classes("suitecalc\0SuiteCalc\0", 20);
    windows[0]->setProperty("WM_CLASS", "STRING", 8, classes.data(), static_cast<std::uint32_t>(classes.size()));
    windows[0]->setTitle("Table");
    // What the program reads after this window has opened is newer than the change.
    openActive({.title = "Later", .className = "SuiteStart"});
    ASSERT_TRUE(program->waitForList(4, window(3))) << "it said: " << program->process().output();
    use(song);
    hold();
    type({key::q, key::u, key::a});
    input.tap(key::enter);
    expectSwitchTo(window(1));
    letGo();
    // Rows: the calculator's only window, then by recency.
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(song);
}

TEST_P(ApplicationIdentityTest, AnApplicationInstalledWhileItRunsIsKnownByItsEntry) {
    install("suite-writer", "Brief", "SuiteWriter");
    const auto table = start("SuiteCalc", {"Table"}).front();
    const auto song = start("Player", {"Song"}).front();
    startHaving({song, table});
    program->process().discardOutput();
    install("suite-calc", "Quartz", "SuiteCalc");
    ASSERT_TRUE(program->waitForList(2, table))
        << "waited for the program to read the entry; it said: " << program->process().output();
    use(song);
    hold();
    type({key::q, key::u, key::a});
    input.tap(key::enter);
    expectSwitchTo(table);
    letGo();
}

TEST_P(ApplicationIdentityTest, AFavouriteCountsForEveryProcessOfTheApplication) {
    install("shell-terminal", "Shell", "Terminal");
    const auto first = start("Terminal", {"First shell"}).front();
    const auto second = start("Terminal", {"Second shell"}).front();
    const auto page = start("Browser", {"Page"}).front();
    const auto song = start("Player", {"Song"}).front();
    writeSwitcherSetting(R"(favouriteBundleIdentifiers=["shell-terminal"])");
    startHaving({first, page, second, song});
    // Rows: the second terminal, the first, then the player and the browser.
    hold();
    input.tap(key::home);
    input.tap(key::enter);
    expectSwitchTo(second);
    letGo();
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(first);
}

INSTANTIATE_TEST_SUITE_P(X11, ApplicationIdentityTest, testing::Values("openbox", "xfwm4"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
