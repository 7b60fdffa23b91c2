#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

struct Ordering {
    const char* manager;
    bool isActiveApplicationFirst;
    int switches;
};

void PrintTo(const Ordering& ordering, std::ostream* stream) {
    *stream << ordering.manager << (ordering.isActiveApplicationFirst ? ", active application first" : ", by recency");
}

/// Windows of three processes: two of an editor, two of a browser and one of a player.
class ActiveApplicationFirstTest : public DeskTest<testing::TestWithParam<Ordering>> {
protected:
    ActiveApplicationFirstTest() : DeskTest(GetParam().manager) {
        open("Editor", {"Chapter", "Notes"});
        open("Browser", {"News", "Weather"});
        open("Player", {"Song"});
    }

    /// Makes each window active in its turn, so that the applications' windows alternate by recency.
    void startWithAlternatingWindows() {
        for (const auto window : {player(1), browser(2), editor(2), browser(1), editor(1)}) {
            makeActive(window);
            recency_.insert(recency_.begin(), window);
        }
        writeSwitcherSetting(std::string("activeAppFirst=") + (GetParam().isActiveApplicationFirst ? "true" : "false"));
        startProgram();
        ASSERT_TRUE(program->waitForList(recency_.size(), editor(1))) << "it said: " << program->process().output();
    }

    [[nodiscard]] xcb_window_t editor(std::size_t ordinal) const { return window(0, ordinal); }
    [[nodiscard]] xcb_window_t browser(std::size_t ordinal) const { return window(1, ordinal); }
    [[nodiscard]] xcb_window_t player(std::size_t ordinal) const { return window(2, ordinal); }

    /// Where that many Tabs lead; the window is the latest one from here on.
    xcb_window_t switchedTo(int tabs) {
        auto rows = recency_;
        if (GetParam().isActiveApplicationFirst) {
            const auto active = applicationOf(recency_.front());
            std::stable_partition(rows.begin(), rows.end(),
                                  [&](xcb_window_t window) { return applicationOf(window) == active; });
        }
        const auto target = rows[static_cast<std::size_t>(tabs) % rows.size()];
        std::erase(recency_, target);
        recency_.insert(recency_.begin(), target);
        return target;
    }

private:
    void open(const std::string& name, const std::vector<std::string>& titles) {
        applications_.push_back(std::make_unique<ApplicationProcess>(server, name, titles));
    }
    [[nodiscard]] xcb_window_t window(std::size_t application, std::size_t ordinal) const {
        return applications_.at(application)->windows().at(ordinal - 1);
    }
    [[nodiscard]] const ApplicationProcess* applicationOf(xcb_window_t window) const {
        for (const auto& application : applications_) {
            const auto& its = application->windows();
            if (std::find(its.begin(), its.end(), window) != its.end()) {
                return application.get();
            }
        }
        return nullptr;
    }

    std::vector<std::unique_ptr<ApplicationProcess>> applications_;
    std::vector<xcb_window_t> recency_;
};

TEST_P(ActiveApplicationFirstTest, AQuickToggleStaysInTheApplicationOnlyWhenItsWindowsComeFirst) {
    startWithAlternatingWindows();
    const auto other = GetParam().isActiveApplicationFirst ? editor(2) : browser(1);
    for (const auto expected : {other, editor(1), other, editor(1)}) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(expected);
    }
}

TEST_P(ActiveApplicationFirstTest, TheThirdRowIsTheNextApplicationOnceItsOwnWindowsArePassed) {
    startWithAlternatingWindows();
    hold(2);
    letGo();
    // Editor 1 and 2, then browser 1; or editor 1, browser 1, then editor 2.
    expectSwitchTo(GetParam().isActiveApplicationFirst ? browser(1) : editor(2));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(GetParam().isActiveApplicationFirst ? browser(2) : editor(1));
}

TEST_P(ActiveApplicationFirstTest, EveryFastSwitchEndsOnTheExpectedWindow) {
    startWithAlternatingWindows();
    Hands hands(input);
    for (int round = 0; round < GetParam().switches; ++round) {
        const int tabs = hands.someTabs(4);
        hands.toggle(tabs);
        const auto expected = switchedTo(tabs);
        ASSERT_TRUE(desktop.waitForActiveWindow(expected, milliseconds{3000}))
            << "switch " << round << " by " << tabs << ": waited for " << expected << ", but " << desktop.activeWindow()
            << " is active; it said: " << program->process().output();
        ASSERT_TRUE(desktop.waitForPanel(false)) << "switch " << round << ": the panel stayed";
    }
}

std::string orderingName(const testing::TestParamInfo<Ordering>& instance) {
    return std::string(instance.param.manager) + (instance.param.isActiveApplicationFirst ? "_on" : "_off");
}

INSTANTIATE_TEST_SUITE_P(X11, ActiveApplicationFirstTest,
                         testing::Values(Ordering{"openbox", true, 100}, Ordering{"openbox", false, 100},
                                         Ordering{"xfwm4", true, 100}, Ordering{"xfwm4", false, 100}),
                         orderingName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, ActiveApplicationFirstTest,
                         testing::Values(Ordering{"icewm", true, 30}, Ordering{"icewm", false, 30},
                                         Ordering{"metacity", true, 30}, Ordering{"metacity", false, 30},
                                         Ordering{"i3", true, 30}, Ordering{"i3", false, 30},
                                         Ordering{"kwin_x11", true, 30}, Ordering{"kwin_x11", false, 30},
                                         Ordering{"mutter", true, 30}, Ordering{"mutter", false, 30}),
                         orderingName);

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
