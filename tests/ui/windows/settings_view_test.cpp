#include "ui/windows/settings_view.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include "platform/simulated/simulated_system.h"
#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/windows/control_style.h"
#include "ui/windows/controls.h"
#include "ui/windows/labels.h"

namespace ferrowyn {
namespace {

using test::buttonNamed;
using test::SettingsViewTest;
using test::visibleButtons;
using test::visibleKeyCaps;
using test::visibleTexts;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

/// The symbol beside a text; "no such text" for one that is not there.
std::string symbolBeside(const QWidget& widget, const std::string& text) {
    for (const auto* const label : widget.findChildren<TextLabel*>()) {
        if (label->isVisibleTo(&widget) && label->text() == QString::fromStdString(text)) {
            return label->symbol();
        }
    }
    return "no such text";
}

TEST_F(SettingsViewTest, StartsWithTheGeneralPane) {
    EXPECT_EQ(view.selection(), SettingsPane::general);
    EXPECT_EQ(view.sizeHint(), QSize(720, 500));
    EXPECT_EQ(view.findChild<SettingsSidebar*>()->width(), 190);
}

TEST_F(SettingsViewTest, TheSidebarChoosesThePane) {
    auto& sidebar = *view.findChild<SettingsSidebar*>();
    std::vector<std::string> names;
    for (int row = 0; row < sidebar.count(); ++row) {
        names.push_back(sidebar.item(row)->text().toStdString());
        sidebar.setCurrentRow(row);
        EXPECT_EQ(view.selection(), allSettingsPanes.at(static_cast<std::size_t>(row)));
        const QWidget& pane = *view.findChild<QStackedWidget*>()->currentWidget();
        EXPECT_EQ(visibleTexts(pane).front(), names.back()) << "the pane is headed by its name";
    }
    EXPECT_THAT(names, ElementsAre("General", "Shortcut", "Appearance", "Windows", "Favourites", "About"));
}

TEST_F(SettingsViewTest, TheArrowKeysMoveThroughTheSidebar) {
    auto& sidebar = *view.findChild<SettingsSidebar*>();
    press(sidebar, Qt::Key_Down);
    EXPECT_EQ(view.selection(), SettingsPane::shortcut);
    press(sidebar, Qt::Key_End);
    EXPECT_EQ(view.selection(), SettingsPane::about);
    press(sidebar, Qt::Key_Up);
    EXPECT_EQ(view.selection(), SettingsPane::favourites);
}

TEST_F(SettingsViewTest, AClickBesideTheSidebarsRowsKeepsThePane) {
    auto& sidebar = *view.findChild<SettingsSidebar*>();
    view.resize(720, 500);
    view.show();
    open(SettingsPane::windows);
    const QPointF below(90, 400);
    QMouseEvent press(QEvent::MouseButtonPress, below, sidebar.viewport()->mapToGlobal(below), Qt::LeftButton,
                      Qt::LeftButton, Qt::ControlModifier);
    QApplication::sendEvent(sidebar.viewport(), &press);
    EXPECT_EQ(view.selection(), SettingsPane::windows);
    EXPECT_EQ(sidebar.selectedItems().size(), 1);
}

TEST_F(SettingsViewTest, EverySwitchIsBoundToItsSettingBothWays) {
    Preferences& preferences = model.preferences;
    expectBound(SettingsPane::general, "Check for updates automatically", preferences.automaticUpdateChecks);
    expectBound(SettingsPane::shortcut, "Switch when the modifier is released", preferences.confirmOnModifierRelease);
    expectBound(SettingsPane::appearance, "Show shortcut hints", preferences.showShortcutHints);
    expectBound(SettingsPane::windows, "Show the active app's windows first", preferences.showActiveAppWindowsFirst);
    expectBound(SettingsPane::windows, "Minimised windows", preferences.includeMinimized);
    expectBound(SettingsPane::windows, "Windows on other Spaces", preferences.includeOtherSpaces);
    expectBound(SettingsPane::favourites, "Show favourite apps first", preferences.favouritesFirst);
}

TEST_F(SettingsViewTest, TheWholeRowOfASwitchCanBeClicked) {
    QAbstractButton& control = *buttonNamed(open(SettingsPane::windows), "Minimised windows");
    control.resize(400, 42);
    const QPointF onTheText(30, 20);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, onTheText, control.mapToGlobal(onTheText), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&control, &event);
    }
    EXPECT_FALSE(model.preferences.includeMinimized.get());
}

// General

TEST_F(SettingsViewTest, LaunchAtLoginIsOnWhileRegistered) {
    using Status = LoginItem::Status;
    QWidget& pane = open(SettingsPane::general);
    QAbstractButton& launch = *buttonNamed(pane, "Launch Ferrowyn at login");
    for (const auto& [status, isOn, isEnabled] :
         {std::tuple(Status::notRegistered, false, true), std::tuple(Status::enabled, true, true),
          std::tuple(Status::requiresApproval, true, true), std::tuple(Status::notFound, false, false)}) {
        model.desktop.loginItem().current = status;
        model.launchAtLogin.refresh();
        EXPECT_EQ(launch.isChecked(), isOn) << static_cast<int>(status);
        EXPECT_EQ(launch.isEnabled(), isEnabled) << static_cast<int>(status);
    }
}

TEST_F(SettingsViewTest, SwitchingLaunchAtLoginRegistersAndUnregisters) {
    QAbstractButton& launch = *buttonNamed(open(SettingsPane::general), "Launch Ferrowyn at login");
    launch.click();
    launch.click();
    EXPECT_THAT(model.desktop.loginItem().requests, ElementsAre(true, false));
    EXPECT_FALSE(launch.isChecked());
}

TEST_F(SettingsViewTest, ARefusedRegistrationSwitchesBackAndSaysWhy) {
    QWidget& pane = open(SettingsPane::general);
    QAbstractButton& launch = *buttonNamed(pane, "Launch Ferrowyn at login");
    model.desktop.loginItem().error = LoginItem::Error{"NSPOSIXErrorDomain", 13, "Permission denied"};
    launch.click();
    EXPECT_FALSE(launch.isChecked());
    EXPECT_EQ(symbolBeside(pane, "Permission denied"), "exclamationmark.triangle.fill");
    model.desktop.loginItem().error.reset();
    launch.click();
    EXPECT_TRUE(launch.isChecked());
    EXPECT_THAT(visibleTexts(pane), Not(Contains("Permission denied")));
}

TEST_F(SettingsViewTest, ALoginItemThatWaitsForApprovalOffersTheSystemsSettings) {
    QWidget& pane = open(SettingsPane::general);
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Open Login Items")));
    model.desktop.loginItem().statusAfterRegistering = LoginItem::Status::requiresApproval;
    buttonNamed(pane, "Launch Ferrowyn at login")->click();
    EXPECT_EQ(symbolBeside(pane, "Approve Ferrowyn in System Settings → General → Login Items."),
              "exclamationmark.triangle.fill");
    model.desktop.takeControlCalls();
    buttonNamed(pane, "Open Login Items")->click();
    EXPECT_THAT(model.desktop.takeControlCalls(), ElementsAre("settings loginItems"));
    model.desktop.loginItem().current = LoginItem::Status::enabled;
    model.launchAtLogin.refresh();
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Open Login Items")));
}

TEST_F(SettingsViewTest, TheUpdateLineFollowsTheCheck) {
    QWidget& pane = open(SettingsPane::general);
    EXPECT_EQ(symbolBeside(pane, "Not checked yet."), "");
    buttonNamed(pane, "Check Now")->click();
    EXPECT_EQ(model.desktop.httpClient().requestCount(), 1U);
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Check Now")));
    EXPECT_THAT(visibleTexts(pane), Contains("Checking…"));
    EXPECT_THAT(visibleTexts(pane), Not(Contains("Not checked yet.")));
    model.desktop.httpClient().answer(0, HttpResponse{404, ""});
    EXPECT_EQ(symbolBeside(pane, "The update server replied with 404."), "exclamationmark.triangle.fill");
    EXPECT_THAT(visibleTexts(pane), Not(Contains("Checking…")));
    buttonNamed(pane, "Check Now")->click();
    model.desktop.httpClient().answer(1,
                                      HttpResponse{200, R"({"version": "1.4", "url": "https://ferrowyn.example/f"})"});
    EXPECT_EQ(symbolBeside(pane, "Version 1.4 is available"), "arrow.down.circle.fill");
    buttonNamed(pane, "Check Now")->click();
    model.desktop.httpClient().answer(2,
                                      HttpResponse{200, R"({"version": "1.0", "url": "https://ferrowyn.example/f"})"});
    EXPECT_EQ(symbolBeside(pane, "Ferrowyn is up to date"), "checkmark.circle.fill");
}

TEST(SettingsWithoutUpdateServerTest, TheUpdateLineSaysSoAndNothingCanBeAsked) {
    test::UtilityModel model(macTexts(),
                             [](SimulatedDesktop& desktop) { desktop.application().bundle.updateHost.reset(); });
    SettingsView view(model.platform, model.services);
    view.select(SettingsPane::general);
    QWidget& pane = *view.findChild<QStackedWidget*>()->currentWidget();
    EXPECT_EQ(symbolBeside(pane, "This build has no update server, so it never asks."), "");
    EXPECT_THAT(visibleTexts(pane), AllOf(Not(Contains("Not checked yet.")), Not(Contains("Checking…"))));
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Check Now")));
    EXPECT_FALSE(buttonNamed(pane, "Check for updates automatically")->isEnabled());
}

TEST_F(SettingsViewTest, TrustThatArrivesChangesThePermissionLineInPlace) {
    QWidget& pane = open(SettingsPane::general);
    EXPECT_EQ(symbolBeside(pane, "Accessibility access granted"), "checkmark.circle.fill");
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Open Settings")));
    model.desktop.setTrusted(false);
    model.authorizer.refresh();
    EXPECT_EQ(symbolBeside(pane, "Accessibility access required"), "exclamationmark.triangle.fill");
    model.desktop.takeControlCalls();
    buttonNamed(pane, "Open Settings")->click();
    EXPECT_THAT(model.desktop.takeControlCalls(), ElementsAre("settings accessibility"));
    model.desktop.setTrusted(true);
    model.authorizer.refresh();
    EXPECT_EQ(symbolBeside(pane, "Accessibility access granted"), "checkmark.circle.fill");
    EXPECT_THAT(visibleButtons(pane), Not(Contains("Open Settings")));
}

TEST_F(SettingsViewTest, SecureInputIsNamedWhileItIsActive) {
    const std::string line = "Secure input is active — another app is blocking global shortcuts.";
    QWidget& pane = open(SettingsPane::general);
    EXPECT_THAT(visibleTexts(pane), Not(Contains(line)));
    model.desktop.setSecureInput(true);
    model.desktop.advance(Seconds(2));
    EXPECT_EQ(symbolBeside(pane, line), "keyboard.badge.ellipsis");
    model.desktop.setSecureInput(false);
    model.desktop.advance(Seconds(2));
    EXPECT_THAT(visibleTexts(pane), Not(Contains(line)));
}

// Shortcut

class TriggerTest : public SettingsViewTest {
protected:
    QWidget& pane = open(SettingsPane::shortcut);
    ChoiceBox& choice = *pane.findChild<ChoiceBox*>();
    const std::string note = "Command + Tab replaces the system app switcher while Ferrowyn is running.";
};

TEST_F(TriggerTest, OffersTheModifiersInTheirOrder) {
    ASSERT_EQ(choice.count(), 3);
    EXPECT_EQ(choice.itemText(0), QStringLiteral("Option + Tab"));
    EXPECT_EQ(choice.itemText(1), QStringLiteral("Command + Tab"));
    EXPECT_EQ(choice.itemText(2), QStringLiteral("Control + Tab"));
}

TEST_F(TriggerTest, IsBoundBothWays) {
    EXPECT_EQ(choice.currentIndex(), 0);
    press(choice, Qt::Key_Down);
    EXPECT_EQ(model.preferences.modifier.get(), SwitcherModifier::command);
    press(choice, Qt::Key_Down);
    EXPECT_EQ(model.preferences.modifier.get(), SwitcherModifier::control);
    model.preferences.modifier.set(SwitcherModifier::option);
    EXPECT_EQ(choice.currentIndex(), 0);
    EXPECT_EQ(model.preferences.modifier.get(), SwitcherModifier::option) << "following sets nothing";
}

TEST_F(TriggerTest, CommandAloneShowsTheReplacementNote) {
    EXPECT_THAT(visibleTexts(pane), Not(Contains(note)));
    model.preferences.modifier.set(SwitcherModifier::command);
    EXPECT_THAT(visibleTexts(pane), Contains(note));
    model.preferences.modifier.set(SwitcherModifier::control);
    EXPECT_THAT(visibleTexts(pane), Not(Contains(note)));
    model.preferences.modifier.set(SwitcherModifier::command);
    model.preferences.modifier.set(SwitcherModifier::option);
    EXPECT_THAT(visibleTexts(pane), Not(Contains(note)));
}

TEST_F(TriggerTest, TheWheelScrollsPastTheControls) {
    for (QWidget* const control :
         {static_cast<QWidget*>(&choice), static_cast<QWidget*>(view.findChild<QSpinBox*>())}) {
        control->setFocus();
        QWheelEvent turn(QPointF(5, 5), QPointF(5, 5), {}, QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
                         Qt::NoScrollPhase, false);
        QApplication::sendEvent(control, &turn);
    }
    EXPECT_EQ(model.preferences.modifier.get(), SwitcherModifier::option);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 9);
}

TEST_F(TriggerTest, TheKeysOfAnOpenSwitcherAreListed) {
    EXPECT_THAT(visibleKeyCaps(pane), ElementsAre("⌘L", "⌘D", "⌘1–9", "↑ ↓", "esc"));
    EXPECT_THAT(
        visibleTexts(pane),
        ElementsAre("Shortcut", "Summon with",
                    "With this off, the switcher stays open until you press Return or Escape.",
                    "While the switcher is open", "Cycle List → Grouped → Grid", "Pin or unpin the highlighted app",
                    "Jump straight to a row", "Move the selection", "Close without switching"));
}

class LinuxSettingsViewTest : public SettingsViewTest {
protected:
    LinuxSettingsViewTest() : SettingsViewTest(linuxTexts()) {}
};

TEST_F(LinuxSettingsViewTest, TheKeysThatStandForCommandFollowTheTrigger) {
    QWidget& pane = open(SettingsPane::shortcut);
    EXPECT_THAT(visibleKeyCaps(pane), ElementsAre("Ctrl+L", "Ctrl+D", "Ctrl+1–9", "↑ ↓", "Esc"));
    model.preferences.modifier.set(SwitcherModifier::control);
    EXPECT_THAT(visibleKeyCaps(pane), ElementsAre("Super+L", "Super+D", "Super+1–9", "↑ ↓", "Esc"));
    EXPECT_THAT(visibleTexts(open(SettingsPane::favourites)),
                Contains(testing::StartsWith("Press Super+D while the switcher is open")));
}

TEST_F(LinuxSettingsViewTest, WorkspacesAreCalledWorkspaces) {
    expectBound(SettingsPane::windows, "Windows on other workspaces", model.preferences.includeOtherSpaces);
}

TEST_F(LinuxSettingsViewTest, ThePermissionLineNamesWhatIsMissing) {
    QWidget& pane = open(SettingsPane::general);
    EXPECT_EQ(symbolBeside(pane, "A window manager is running"), "checkmark.circle.fill");
    model.desktop.setTrusted(false);
    model.authorizer.refresh();
    EXPECT_EQ(symbolBeside(pane, "A window manager is required"), "exclamationmark.triangle.fill");
    EXPECT_THAT(visibleButtons(pane), Contains("Open Setup"));
}

TEST_F(LinuxSettingsViewTest, AServerThatCannotBeUsedIsCalledThat) {
    model.desktop.makeServerUnusable();
    model.authorizer.refresh();
    EXPECT_EQ(symbolBeside(open(SettingsPane::general), "This X server cannot be used"),
              "exclamationmark.triangle.fill");
}

// Appearance

TEST_F(SettingsViewTest, TheLayoutIsChosenAndDescribed) {
    QWidget& pane = open(SettingsPane::appearance);
    const std::vector<std::tuple<std::string, SwitcherLayout, std::string, std::string_view>> layouts{
        {"Grouped", SwitcherLayout::grouped, "list.bullet.indent", macUtilityTexts().settings.groupedDescription},
        {"Grid", SwitcherLayout::grid, "square.grid.3x2", macUtilityTexts().settings.gridDescription},
        {"List", SwitcherLayout::list, "list.bullet", macUtilityTexts().settings.listDescription},
    };
    for (const auto& [title, layout, symbol, description] : layouts) {
        auto* const button = buttonNamed(pane, title);
        EXPECT_EQ(ControlStyle::symbol(*button), symbol);
        EXPECT_FALSE(button->isChecked());
        button->click();
        EXPECT_EQ(model.preferences.layout.get(), layout);
        EXPECT_THAT(visibleTexts(pane), Contains(std::string(description)));
    }
    for (const auto& [title, layout, symbol, description] : layouts) {
        const auto written = model.desktop.storedValues().size();
        model.preferences.layout.set(layout);
        EXPECT_TRUE(buttonNamed(pane, title)->isChecked());
        EXPECT_THAT(visibleTexts(pane), Contains(std::string(description)));
        EXPECT_EQ(model.desktop.storedValues().size(), written + 1) << "following writes nothing";
    }
}

TEST_F(SettingsViewTest, TheArrowKeysChooseTheNeighbouringLayout) {
    view.resize(720, 500);
    view.show();
    view.activateWindow();
    QWidget& pane = open(SettingsPane::appearance);
    QCoreApplication::processEvents();
    buttonNamed(pane, "List")->setFocus();
    press(*buttonNamed(pane, "List"), Qt::Key_Right);
    EXPECT_EQ(model.preferences.layout.get(), SwitcherLayout::grouped);
    EXPECT_TRUE(buttonNamed(pane, "Grouped")->hasFocus());
    press(*buttonNamed(pane, "Grouped"), Qt::Key_Right);
    press(*buttonNamed(pane, "Grid"), Qt::Key_Left);
    EXPECT_EQ(model.preferences.layout.get(), SwitcherLayout::grouped);
}

class StepperTest : public SettingsViewTest {
protected:
    QWidget& pane = open(SettingsPane::appearance);
    QSpinBox& stepper = *pane.findChild<QSpinBox*>();
};

TEST_F(StepperTest, IsBoundBothWaysAndSaysItsNumber) {
    EXPECT_EQ(stepper.value(), 9);
    EXPECT_THAT(visibleTexts(pane), Contains("Show up to 9 rows before scrolling"));
    press(stepper, Qt::Key_Up);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 10);
    EXPECT_THAT(visibleTexts(pane), Contains("Show up to 10 rows before scrolling"));
    press(stepper, Qt::Key_Down);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 9);
    model.preferences.maximumVisibleRows.set(12);
    EXPECT_EQ(stepper.value(), 12);
    EXPECT_THAT(visibleTexts(pane), Contains("Show up to 12 rows before scrolling"));
}

TEST_F(StepperTest, GoesNeitherBelowFourNorAboveSixteen) {
    EXPECT_EQ(stepper.singleStep(), 1);
    for (int step = 0; step < 20; ++step) {
        press(stepper, Qt::Key_Down);
    }
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 4);
    for (int step = 0; step < 30; ++step) {
        press(stepper, Qt::Key_Up);
    }
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 16);
}

TEST_F(StepperTest, ItsButtonsStepOnce) {
    stepper.resize(stepper.sizeHint());
    const auto click = [this](double x) {
        const QPointF position(x, 13);
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, position, stepper.mapToGlobal(position), Qt::LeftButton, Qt::LeftButton,
                              Qt::NoModifier);
            QApplication::sendEvent(&stepper, &event);
        }
    };
    click(stepper.width() - 10);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 10);
    click(10);
    click(10);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 8);
    click(stepper.width() / 2.0);
    EXPECT_EQ(model.preferences.maximumVisibleRows.get(), 8) << "the number itself is no button";
}

// Windows

TEST_F(SettingsViewTest, TheNoteOnTheOrderFollowsItsSwitch) {
    QWidget& pane = open(SettingsPane::windows);
    const std::string on(macUtilityTexts().settings.activeAppFirstOnNote);
    const std::string off(macUtilityTexts().settings.activeAppFirstOffNote);
    EXPECT_THAT(visibleTexts(pane), Contains(on));
    buttonNamed(pane, "Show the active app's windows first")->click();
    EXPECT_THAT(visibleTexts(pane), Contains(off));
    EXPECT_THAT(visibleTexts(pane), Not(Contains(on)));
    model.preferences.showActiveAppWindowsFirst.set(true);
    EXPECT_THAT(visibleTexts(pane), Contains(on));
}

// About

TEST_F(SettingsViewTest, TheAboutPaneShowsTheProgram) {
    QWidget& pane = open(SettingsPane::about);
    EXPECT_THAT(visibleTexts(pane), Contains("Ferrowyn"));
    EXPECT_THAT(visibleTexts(pane), Contains("Switch between every open window, not just apps."));
    EXPECT_THAT(visibleButtons(pane), Not(IsEmpty())) << "the site's link";
}

}  // namespace
}  // namespace ferrowyn
