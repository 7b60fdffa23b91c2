#include "ui/menu/status_item_controller.h"

#include <optional>

#include "app/app_services.h"
#include "core/texts.h"
#include "input/switcher_controller.h"
#include "input/window_activator.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_display.h"
#include "platform/simulated/simulated_system.h"
#include "tests/input/panel_doubles.h"

namespace ferrowyn {

void PrintTo(const MenuRow& row, std::ostream* stream) {
    *stream << static_cast<int>(row.kind) << " \"" << row.title << row.titleSuffix << "\" " << row.header.subtitle
            << " [" << row.symbol << " " << static_cast<int>(row.symbolTint) << "] key " << row.keyEquivalent
            << " tooltip " << row.tooltip << " value " << row.representedValue
            << (row.isEnabled ? " enabled" : " disabled") << (row.isChecked ? " checked" : "") << " action "
            << static_cast<int>(row.action);
}

namespace {

using namespace std::chrono_literals;
using Action = MenuRow::Action;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr Pid editor = 100;

const MenuRow separator{.kind = MenuRow::Kind::separator};

MenuRow header(const std::string& subtitle, MenuTint tint) {
    return {.kind = MenuRow::Kind::header,
            .header = {.title = "Ferrowyn", .subtitle = subtitle, .subtitleTint = tint},
            .action = Action::openSettings};
}

MenuRow layoutRow(const std::string& title, const std::string& symbol, const std::string& value, bool isChecked) {
    return {.title = title,
            .symbol = symbol,
            .representedValue = value,
            .isChecked = isChecked,
            .action = Action::selectLayout};
}

MenuRow openSwitcherRow(bool isEnabled, const std::string& keys) {
    return {.title = "Open Switcher",
            .titleSuffix = keys,
            .symbol = "rectangle.stack",
            .isEnabled = isEnabled,
            .action = Action::showSwitcher};
}

/// The rows that are the same in every state, with four windows and nothing registered.
StatusMenu rowsBelow(StatusMenu top, bool isTrusted = true, const std::string& keys = "⌥⇥", int windowCount = 4) {
    const StatusMenu common{
        openSwitcherRow(isTrusted, keys),
        {.title = std::to_string(windowCount) + " windows tracked", .symbol = "macwindow", .isEnabled = false},
        separator,
        {.kind = MenuRow::Kind::sectionTitle, .title = "LAYOUT", .isEnabled = false},
        layoutRow("List", "list.bullet", "list", true),
        layoutRow("Grouped", "list.bullet.indent", "grouped", false),
        layoutRow("Grid", "square.grid.3x2", "grid", false),
        separator,
        {.title = "Launch at Login", .symbol = "power", .action = Action::toggleLaunchAtLogin},
        {.title = "Settings…", .symbol = "gearshape", .keyEquivalent = ",", .action = Action::openSettings},
        {.title = "Setup Guide…", .symbol = "questionmark.circle", .action = Action::openOnboarding},
        {.title = "About Ferrowyn", .symbol = "info.circle", .action = Action::openAbout},
        separator,
        {.title = "Quit Ferrowyn", .symbol = "xmark.circle", .keyEquivalent = "q", .action = Action::quit},
    };
    top.insert(top.end(), common.begin(), common.end());
    return top;
}

MenuRow repairRow(const std::string& title, const std::string& symbol, Action action) {
    return {.title = title,
            .symbol = symbol,
            .symbolTint = MenuTint::orange,
            .isEnabled = action != Action::none,
            .action = action};
}

class StatusItemControllerTest : public testing::Test {
protected:
    StatusItemControllerTest() {
        desktop.launch({.pid = editor, .bundleIdentifier = "org.editor", .localizedName = "Editor"}, true);
        for (const WindowId id : {4U, 3U, 2U, 1U}) {
            desktop.openWindow({.id = id, .pid = editor, .title = "Window " + std::to_string(id)}, true);
        }
        desktop.setFrontmost(editor);
    }

    void build() { build(desktop.platform()); }
    void build(const Platform& platform) {
        if (!services) {
            services.emplace(platform, stubContentFactory(content));
        }
        desktop.settle();
        controller.reset();
        controller.emplace(platform, item, *services,
                           StatusItemController::Actions{.onOpenSettings = [this] { opened.push_back("settings"); },
                                                         .onOpenOnboarding = [this] { opened.push_back("setup"); },
                                                         .onOpenAbout = [this] { opened.push_back("about"); }});
        controller->configureButton();
        controller->buildMenu();
        controller->followServices();
        static_cast<void>(desktop.takeControlCalls());
    }
    void timeOutFiveTimes() {
        for (int timeout = 0; timeout < 5; ++timeout) {
            desktop.disableTapByTimeout();
            desktop.settle();
        }
    }
    /// Trust stays, but the tap cannot be installed any more.
    void failToRestart() {
        desktop.refuseKeyboardTap("CGEvent.tapCreate failed");
        services->retryInput();
        desktop.settle();
    }
    /// Of two applications, the second of which is not listed.
    void ignoreTwoActivations() {
        constexpr Pid unlisted = 400;
        desktop.launch({.pid = unlisted, .localizedName = "Unlisted"}, true);
        desktop.openWindow({.id = 9, .pid = unlisted}, true);
        desktop.setFrontmost(std::nullopt);
        AppWindow window = services->windowIndex().windows().get().front();
        for (const auto& [id, application] : {std::pair{window.id, editor}, {WindowId{9}, unlisted}}) {
            desktop.setIgnoresActivation(application, true);
            window.id = id;
            window.pid = application;
            window.axElement = desktop.elementOf(id);
            services->switcher().activator().activate(window);
            desktop.advance(2s);
        }
    }
    void offerUpdate(const std::string& version, const std::string& address = "https://example.org/get") {
        services->updates().check();
        auto& http = desktop.httpClient();
        http.answer(http.requestCount() - 1,
                    HttpResponse{200, R"({"version": ")" + version + R"(", "url": ")" + address + "\"}"});
        desktop.settle();
    }
    [[nodiscard]] const MenuRow* find(Action action) const {
        const auto row = std::ranges::find_if(item.menu, [action](const MenuRow& candidate) {
            return candidate.action == action && candidate.kind == MenuRow::Kind::item;
        });
        return row == item.menu.end() ? nullptr : &*row;
    }
    /// A copy: choosing may replace the menu.
    [[nodiscard]] MenuRow row(Action action) const {
        const MenuRow* const found = find(action);
        EXPECT_NE(found, nullptr) << "no row with action " << static_cast<int>(action);
        return found == nullptr ? MenuRow{} : *found;
    }
    [[nodiscard]] std::string windowCountTitle() const {
        const auto found = std::ranges::find(item.menu, "macwindow", &MenuRow::symbol);
        return found == item.menu.end() ? "" : found->title;
    }

    SimulatedDesktop desktop;
    SimulatedStatusItem item;
    SwitcherContentCallbacks content;
    std::optional<AppServices> services;
    std::optional<StatusItemController> controller;
    std::vector<std::string> opened;
};

TEST_F(StatusItemControllerTest, ReadyShowsNoRepair) {
    build();
    EXPECT_EQ(item.button, (StatusButton{"macwindow.on.rectangle", "Ferrowyn", "Ferrowyn"}));
    EXPECT_THAT(item.menu, ElementsAreArray(rowsBelow({header("Ready", MenuTint::secondaryLabel), separator})));
}

TEST_F(StatusItemControllerTest, MissingTrustOffersToGrantIt) {
    desktop.setTrusted(false);
    build();
    EXPECT_EQ(item.button,
              (StatusButton{"exclamationmark.triangle", "Ferrowyn — Accessibility access required", "Ferrowyn"}));
    EXPECT_THAT(item.menu,
                ElementsAreArray(rowsBelow(
                    {header("Accessibility access required", MenuTint::orange), separator,
                     repairRow("Grant Accessibility Access…", "lock.shield", Action::openOnboarding), separator},
                    false, "⌥⇥", 0)));
}

TEST_F(StatusItemControllerTest, RevokedTrustOffersToReEnableTheShortcut) {
    build();
    failToRestart();
    EXPECT_EQ(item.button,
              (StatusButton{"exclamationmark.triangle", "Ferrowyn — Accessibility access was revoked", "Ferrowyn"}));
    EXPECT_THAT(item.menu, ElementsAreArray(rowsBelow(
                               {header("Accessibility access was revoked", MenuTint::orange), separator,
                                repairRow("Re-enable Shortcut", "arrow.clockwise", Action::retryInput), separator})));
}

TEST_F(StatusItemControllerTest, RepeatedTimeoutsOfferToReEnableTheShortcut) {
    build();
    timeOutFiveTimes();
    EXPECT_EQ(item.button,
              (StatusButton{"exclamationmark.triangle", "Ferrowyn — shortcut disabled by the system", "Ferrowyn"}));
    EXPECT_THAT(item.menu, ElementsAreArray(rowsBelow(
                               {header("Shortcut disabled by the system", MenuTint::orange), separator,
                                repairRow("Re-enable Shortcut", "arrow.clockwise", Action::retryInput), separator})));
}

TEST_F(StatusItemControllerTest, SecureInputIsWaitedForWithNothingToChoose) {
    desktop.setSecureInput(true);
    build();
    EXPECT_EQ(item.button, (StatusButton{"keyboard.badge.ellipsis",
                                         "Ferrowyn — secure input is active, shortcut paused", "Ferrowyn"}));
    EXPECT_THAT(item.menu,
                ElementsAreArray(rowsBelow(
                    {header("Secure input active — shortcut paused", MenuTint::orange), separator,
                     repairRow("Waiting for the other app to release it", "keyboard.badge.ellipsis", Action::none),
                     separator})));
}

TEST_F(StatusItemControllerTest, ATriggerThatAnotherProgramAnswersOffersAnotherModifier) {
    build();
    desktop.loseTrigger();
    desktop.loseTrigger();
    desktop.settle();
    EXPECT_EQ(item.button, (StatusButton{"exclamationmark.triangle", "Ferrowyn — another program answers the shortcut",
                                         "Ferrowyn"}));
    EXPECT_THAT(item.menu, ElementsAreArray(rowsBelow(
                               {header("Another program answers the shortcut", MenuTint::orange), separator,
                                repairRow("Choose Another Modifier…", "keyboard", Action::openSettings), separator})));
    item.choose(item.menu.at(2));
    EXPECT_THAT(opened, ElementsAre("settings"));
}

TEST_F(StatusItemControllerTest, WindowsThatDoNotComeToTheFrontAreNamedWithWhatToDo) {
    build();
    ignoreTwoActivations();
    EXPECT_EQ(item.button, (StatusButton{"exclamationmark.triangle",
                                         "Ferrowyn — chosen windows do not come to the front", "Ferrowyn"}));
    EXPECT_EQ(item.menu.front(), header("Chosen windows do not come to the front", MenuTint::orange));
    EXPECT_EQ(item.menu.at(2),
              repairRow("Restart the apps that do not answer", "exclamationmark.triangle", Action::none));
}

TEST_F(StatusItemControllerTest, OnLinuxItIsTheWindowManagerThatDoesNotBringWindowsToTheFront) {
    const Platform platform = replacedIn(desktop.platform(), {.texts = &linuxTexts()});
    build(platform);
    ignoreTwoActivations();
    EXPECT_EQ(item.menu.at(2), repairRow("Use another window manager", "exclamationmark.triangle", Action::none));
}

TEST_F(StatusItemControllerTest, SecureInputWinsOverWhatEarlierSwitchesTold) {
    build();
    desktop.loseTrigger();
    desktop.loseTrigger();
    desktop.setSecureInput(true);
    desktop.advance(2s);
    EXPECT_EQ(item.menu.front(), header("Secure input active — shortcut paused", MenuTint::orange));
    desktop.setSecureInput(false);
    desktop.advance(2s);
    EXPECT_EQ(item.menu.front(), header("Another program answers the shortcut", MenuTint::orange));
}

TEST_F(StatusItemControllerTest, OnLinuxTheTextsNameWhatIsMissingThereAndTheKeysOfAPcKeyboard) {
    const Platform platform = replacedIn(desktop.platform(), {.texts = &linuxTexts()});
    build(platform);
    EXPECT_THAT(item.menu,
                ElementsAreArray(rowsBelow({header("Ready", MenuTint::secondaryLabel), separator}, true, "Alt+Tab")));

    failToRestart();
    EXPECT_EQ(item.button.tooltip, "Ferrowyn — keyboard access was lost");
    EXPECT_EQ(item.menu.front(), header("Keyboard access was lost", MenuTint::orange));

    desktop.setTrusted(false);
    desktop.advance(3s);
    EXPECT_EQ(item.button,
              (StatusButton{"exclamationmark.triangle", "Ferrowyn — a window manager is required", "Ferrowyn"}));
    EXPECT_THAT(item.menu, ElementsAreArray(rowsBelow(
                               {header("A window manager is required", MenuTint::orange), separator,
                                repairRow("Show What Is Missing…", "lock.shield", Action::openOnboarding), separator},
                               false, "Alt+Tab", 0)));
}

TEST_F(StatusItemControllerTest, AServerThatCannotBeUsedIsNamedInsteadOfAWindowManager) {
    const Platform platform = replacedIn(desktop.platform(), {.texts = &linuxTexts()});
    build(platform);
    desktop.makeServerUnusable();
    desktop.advance(3s);
    EXPECT_EQ(item.button,
              (StatusButton{"exclamationmark.triangle", "Ferrowyn — this X server cannot be used", "Ferrowyn"}));
    EXPECT_EQ(item.menu.front(), header("This X server cannot be used", MenuTint::orange));
    EXPECT_EQ(item.menu.at(2), repairRow("Show What Is Missing…", "questionmark.circle", Action::openOnboarding));
}

TEST_F(StatusItemControllerTest, MissingTrustWinsOverAFailure) {
    build();
    timeOutFiveTimes();
    desktop.setTrusted(false);
    services->authorizer().refresh();
    desktop.settle();
    ASSERT_EQ(services->inputFailure().get(), HotKeyMonitor::Failure::repeatedTimeouts);
    EXPECT_EQ(item.menu.front(), header("Accessibility access required", MenuTint::orange));
    EXPECT_EQ(item.menu.at(2), repairRow("Grant Accessibility Access…", "lock.shield", Action::openOnboarding));
}

TEST_F(StatusItemControllerTest, AFailureWinsOverSecureInput) {
    desktop.setSecureInput(true);
    build();
    timeOutFiveTimes();
    EXPECT_EQ(item.button.symbol, "exclamationmark.triangle");
    EXPECT_EQ(item.menu.front(), header("Shortcut disabled by the system", MenuTint::orange));
}

TEST_F(StatusItemControllerTest, CountsWindowsInWordsThatFitTheNumber) {
    build();
    EXPECT_EQ(windowCountTitle(), "4 windows tracked");
    for (const WindowId id : {4U, 3U, 2U}) {
        desktop.closeWindow(id);
    }
    desktop.advance(1s);
    controller->buildMenu();
    EXPECT_EQ(windowCountTitle(), "1 window tracked");
    desktop.closeWindow(1);
    desktop.advance(1s);
    controller->buildMenu();
    EXPECT_EQ(windowCountTitle(), "0 windows tracked");
}

TEST_F(StatusItemControllerTest, AnAvailableUpdateHasARowOfItsOwnAndNoUpdateHasNone) {
    build();
    EXPECT_EQ(find(Action::downloadUpdate), nullptr);
    offerUpdate("1.4.0");
    const auto update = std::ranges::find(item.menu, Action::downloadUpdate, &MenuRow::action);
    ASSERT_NE(update, item.menu.end());
    EXPECT_EQ(*update, (MenuRow{.title = "Update to 1.4.0…",
                                .symbol = "arrow.down.circle",
                                .symbolTint = MenuTint::accent,
                                .action = Action::downloadUpdate}));
    EXPECT_EQ(std::prev(update)->title, "Setup Guide…");
    EXPECT_EQ(std::next(update)->title, "About Ferrowyn");
    item.choose(MenuRow(*update));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("open https://example.org/get"));

    offerUpdate("1.0");
    EXPECT_EQ(find(Action::downloadUpdate), nullptr);
    offerUpdate("2.0-beta");
    EXPECT_EQ(row(Action::downloadUpdate).title, "Update to 2.0-beta…") << "as it was published";
}

TEST_F(StatusItemControllerTest, AnUpdateWithNothingToOpenIsShownButCannotBeChosenAndSaysWhy) {
    desktop.application().bundle.homePage.reset();
    build();
    offerUpdate("1.4.0", "http://example.org/get");
    EXPECT_EQ(row(Action::downloadUpdate).title, "Update to 1.4.0…");
    EXPECT_FALSE(row(Action::downloadUpdate).isEnabled);
    EXPECT_EQ(row(Action::downloadUpdate).tooltip,
              "The update names no secure page to open. Get it where you got Ferrowyn.");
    offerUpdate("1.5.0");
    EXPECT_TRUE(row(Action::downloadUpdate).isEnabled);
    EXPECT_EQ(row(Action::downloadUpdate).tooltip, "");
}

TEST_F(StatusItemControllerTest, AnUpdateWithoutASecureAddressOpensTheHomePage) {
    build();
    offerUpdate("1.4.0", "http://example.org/get");
    EXPECT_TRUE(row(Action::downloadUpdate).isEnabled);
    item.choose(row(Action::downloadUpdate));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example"));
}

TEST_F(StatusItemControllerTest, AnUnavailableLoginItemIsDisabledAndSaysWhy) {
    desktop.loginItem().current = LoginItem::Status::notFound;
    build();
    EXPECT_EQ(row(Action::toggleLaunchAtLogin),
              (MenuRow{.title = "Launch at Login",
                       .symbol = "power",
                       .tooltip = "Ferrowyn must be in /Applications to launch at login.",
                       .isEnabled = false,
                       .action = Action::toggleLaunchAtLogin}));
}

TEST_F(StatusItemControllerTest, TheLoginItemIsCheckedWhileItIsRegistered) {
    build();
    using Status = LoginItem::Status;
    const std::vector<std::pair<Status, bool>> cases{{Status::enabled, true},
                                                     {Status::requiresApproval, true},
                                                     {Status::notRegistered, false},
                                                     {Status::notFound, false}};
    for (const auto& [status, isChecked] : cases) {
        desktop.loginItem().current = status;
        services->launchAtLogin().refresh();
        controller->buildMenu();
        EXPECT_EQ(row(Action::toggleLaunchAtLogin).isChecked, isChecked) << static_cast<int>(status);
    }
}

TEST_F(StatusItemControllerTest, TogglingTheLoginItemRegistersAndUnregisters) {
    build();
    item.choose(row(Action::toggleLaunchAtLogin));
    EXPECT_TRUE(row(Action::toggleLaunchAtLogin).isChecked);
    item.choose(row(Action::toggleLaunchAtLogin));
    EXPECT_FALSE(row(Action::toggleLaunchAtLogin).isChecked);
    EXPECT_THAT(desktop.loginItem().requests, ElementsAre(true, false));
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(StatusItemControllerTest, ALoginItemThatNeedsApprovalLeadsToTheSettings) {
    desktop.loginItem().statusAfterRegistering = LoginItem::Status::requiresApproval;
    build();
    item.choose(row(Action::toggleLaunchAtLogin));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("settings loginItems"));
    EXPECT_TRUE(row(Action::toggleLaunchAtLogin).isChecked);
    EXPECT_EQ(row(Action::toggleLaunchAtLogin).tooltip, "Approve Ferrowyn in System Settings → General → Login Items.");
    item.choose(row(Action::toggleLaunchAtLogin));
    EXPECT_THAT(desktop.loginItem().requests, ElementsAre(true, false));
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(StatusItemControllerTest, AnUnavailableLoginItemIsAskedToRegister) {
    desktop.loginItem().current = LoginItem::Status::notFound;
    build();
    item.choose(row(Action::toggleLaunchAtLogin));
    EXPECT_THAT(desktop.loginItem().requests, ElementsAre(true));
}

TEST_F(StatusItemControllerTest, TheTriggersKeysWaitForTheNextRebuild) {
    build();
    services->preferences().modifier.set(SwitcherModifier::command);
    desktop.settle();
    EXPECT_EQ(row(Action::showSwitcher).titleSuffix, "⌥⇥");
    controller->buildMenu();
    EXPECT_EQ(row(Action::showSwitcher).titleSuffix, "⌘⇥");
    services->preferences().modifier.set(SwitcherModifier::control);
    controller->buildMenu();
    EXPECT_EQ(row(Action::showSwitcher).titleSuffix, "⌃⇥");
}

TEST_F(StatusItemControllerTest, NeitherTheWindowCountNorTheLoginItemRebuildsTheMenu) {
    build();
    const int menuCount = item.menuCount;
    desktop.closeWindow(4);
    desktop.advance(1s);
    services->launchAtLogin().setEnabled(true);
    desktop.advance(1s);
    EXPECT_EQ(item.menuCount, menuCount);
    EXPECT_EQ(windowCountTitle(), "4 windows tracked");
}

TEST_F(StatusItemControllerTest, TheFirstWindowListAfterTheServicesStartedIsCounted) {
    build();
    services->windowIndex().stop();
    desktop.settle();
    controller->buildMenu();
    ASSERT_EQ(windowCountTitle(), "0 windows tracked");
    services->windowIndex().start();
    desktop.settle();
    EXPECT_EQ(windowCountTitle(), "4 windows tracked");
}

TEST_F(StatusItemControllerTest, EachOfTheFiveSignalsUpdatesButtonAndMenuFromTheMainLoop) {
    build();
    const std::vector<std::pair<const char*, std::function<void()>>> signals{
        {"trust",
         [this] {
             desktop.setTrusted(false);
             services->authorizer().refresh();
         }},
        {"trust again",
         [this] {
             desktop.setTrusted(true);
             services->authorizer().refresh();
         }},
        {"failure", [this] { services->retryInput(); }},
        {"layout", [this] { services->preferences().layout.set(SwitcherLayout::grid); }},
        {"updates", [this] { services->updates().check(); }},
    };
    for (const auto& [name, send] : signals) {
        const int buttonCount = item.buttonCount;
        const int menuCount = item.menuCount;
        send();
        EXPECT_EQ(item.menuCount, menuCount) << name << ": not while the change is still being made";
        desktop.settle();
        // With trust the services start again, and the first window list follows.
        const int updates = name == std::string_view("trust again") ? 2 : 1;
        EXPECT_EQ(item.buttonCount, buttonCount + updates) << name;
        EXPECT_EQ(item.menuCount, menuCount + updates) << name;
    }
    const int menuCount = item.menuCount;
    desktop.setSecureInput(true);
    desktop.advance(2s);
    EXPECT_EQ(item.menuCount, menuCount + 1) << "secure input";
    EXPECT_EQ(item.button.symbol, "keyboard.badge.ellipsis");
    desktop.setSecureInput(false);
    desktop.advance(2s);
    EXPECT_EQ(item.button.symbol, "macwindow.on.rectangle");
}

TEST_F(StatusItemControllerTest, ReEnablingRestartsTheShortcutAndShowsItAtOnce) {
    build();
    timeOutFiveTimes();
    ASSERT_FALSE(services->hotKeyMonitor().isRunning().get());
    item.choose(row(Action::retryInput));
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(item.menu.front(), header("Ready", MenuTint::secondaryLabel));
    desktop.settle();
    EXPECT_EQ(item.button.symbol, "macwindow.on.rectangle");
}

TEST_F(StatusItemControllerTest, OpensTheSwitcherAndLeavesItOpen) {
    build();
    item.choose(row(Action::showSwitcher));
    EXPECT_TRUE(services->switcher().isVisible());
    EXPECT_TRUE(services->switcher().viewModel().isPinned.get());
}

TEST_F(StatusItemControllerTest, ChoosingALayoutStoresAndChecksIt) {
    build();
    for (const std::string value : {"grouped", "grid", "list"}) {
        item.choose(layoutRow("", "", value, false));
        EXPECT_EQ(rawValue(services->preferences().layout.get()), value);
        EXPECT_EQ(desktop.storedValues().back(), std::pair(std::string("switcher.layout"), DefaultsValue(value)));
        for (const MenuRow& candidate : item.menu) {
            if (candidate.action == Action::selectLayout) {
                EXPECT_EQ(candidate.isChecked, candidate.representedValue == value) << candidate.title;
            }
        }
    }
    item.choose(layoutRow("", "", "cube", false));
    EXPECT_EQ(services->preferences().layout.get(), SwitcherLayout::list);
}

TEST_F(StatusItemControllerTest, OpensTheWindowsAndQuits) {
    desktop.setTrusted(false);
    build();
    item.choose(item.menu.front());
    item.choose(item.menu.at(2));
    item.choose(row(Action::openSettings));
    item.choose(row(Action::openAbout));
    EXPECT_THAT(opened, ElementsAre("settings", "setup", "settings", "about"));
    EXPECT_EQ(desktop.application().terminationCount, 0);
    item.choose(row(Action::quit));
    EXPECT_EQ(desktop.application().terminationCount, 1);
    item.choose(separator);
    EXPECT_EQ(opened.size(), 4U);
}

TEST_F(StatusItemControllerTest, NamesTheApplicationAsItsBundleDoes) {
    desktop.application().bundle.name = "Ferrowyn Nightly";
    build();
    EXPECT_EQ(row(Action::openAbout).title, "About Ferrowyn Nightly");
    EXPECT_EQ(row(Action::quit).title, "Quit Ferrowyn");
    desktop.application().bundle.name = std::nullopt;
    build();
    EXPECT_EQ(row(Action::openAbout).title, "About Ferrowyn");
}

TEST_F(StatusItemControllerTest, TranslatesEveryTextBeforeThePartsArePutIn) {
    services.emplace(desktop.platform(), stubContentFactory(content));
    desktop.settle();
    offerUpdate("1.4.0");
    std::vector<std::string> asked;
    const auto shout = [&asked](const Phrase& phrase) {
        asked.emplace_back(phrase.text);
        return withArguments("‹" + std::string(phrase.text) + "›", phrase.arguments);
    };
    controller.emplace(desktop.platform(), item, *services, StatusItemController::Actions{}, shout);
    controller->configureButton();
    controller->buildMenu();
    EXPECT_EQ(item.button.tooltip, "‹Ferrowyn›");
    EXPECT_EQ(item.menu.front().header.subtitle, "‹Ready›");
    for (const MenuRow& candidate : item.menu) {
        if (candidate.kind == MenuRow::Kind::item || candidate.kind == MenuRow::Kind::sectionTitle) {
            EXPECT_THAT(candidate.title, testing::StartsWith("‹"));
        }
    }
    EXPECT_EQ(row(Action::downloadUpdate).title, "‹Update to 1.4.0…›");
    EXPECT_THAT(asked, testing::IsSupersetOf({"%1 windows tracked", "Update to %1…", "About %1"}));
}

TEST_F(StatusItemControllerTest, IsNotReachedAnyMoreOnceItIsGone) {
    build();
    const int menuCount = item.menuCount;
    services->preferences().layout.set(SwitcherLayout::grid);
    const MenuRow settings = row(Action::openSettings);
    controller.reset();
    desktop.settle();
    item.choose(settings);
    EXPECT_EQ(item.menuCount, menuCount);
    EXPECT_THAT(opened, IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
