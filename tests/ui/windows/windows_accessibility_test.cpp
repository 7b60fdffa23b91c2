#include <QAccessible>
#include <QAccessibleInterface>
#include <QDateTime>

#include "platform/main_loop.h"
#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/windows/about_view.h"
#include "ui/windows/controls.h"
#include "ui/windows/onboarding_view.h"
#include "ui/windows/settings_view.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn {
namespace {

using test::SettingsViewTest;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Role = QAccessible::Role;
using Read = std::pair<Role, std::string>;

void read(QAccessibleInterface* element, std::vector<Read>& all) {
    for (int index = 0; index < element->childCount(); ++index) {
        QAccessibleInterface* const child = element->child(index);
        if (child == nullptr || child->state().invisible) {
            continue;
        }
        all.emplace_back(child->role(), child->text(QAccessible::Name).toStdString());
        read(child, all);
    }
}

/// What assistive technology hears in the widget, in its order; not the boxes that only hold others.
std::vector<Read> heard(QWidget& widget) {
    std::vector<Read> all;
    read(QAccessible::queryAccessibleInterface(&widget), all);
    std::erase_if(all, [](const Read& element) { return element.second.empty(); });
    return all;
}

/// A control without a name cannot be used by people who do not see it.
std::vector<Role> namelessControls(QWidget& widget) {
    std::vector<Read> all;
    read(QAccessible::queryAccessibleInterface(&widget), all);
    std::vector<Role> nameless;
    for (const auto& [role, name] : all) {
        const bool isControl = role == Role::CheckBox || role == Role::Button || role == Role::RadioButton ||
                               role == Role::ComboBox || role == Role::SpinBox || role == Role::List ||
                               role == Role::ListItem || role == Role::Graphic;
        if (isControl && name.empty()) {
            nameless.push_back(role);
        }
    }
    return nameless;
}

class WindowsAccessibilityTest : public SettingsViewTest {
protected:
    WindowsAccessibilityTest() {
        view.resize(720, 500);
        view.show();
        view.activateWindow();
        QCoreApplication::processEvents();
    }

    /// The names of the controls that the Tab key goes through, from the sidebar on.
    std::vector<std::string> tabOrder(SettingsPane pane) {
        open(pane);
        QWidget* const sidebar = view.findChild<SettingsSidebar*>();
        sidebar->setFocus();
        std::vector<std::string> names;
        for (int steps = 0; steps < 40; ++steps) {
            press(*QApplication::focusWidget(), Qt::Key_Tab);
            QWidget* const focus = QApplication::focusWidget();
            if (focus == sidebar) {
                return names;
            }
            names.push_back(QAccessible::queryAccessibleInterface(focus)->text(QAccessible::Name).toStdString());
        }
        ADD_FAILURE() << "the Tab key never came back";
        return names;
    }
};

TEST_F(WindowsAccessibilityTest, NoControlIsWithoutAName) {
    model.pin({"org.example.mail", "org.example.maps"});
    for (const auto pane : allSettingsPanes) {
        open(pane);
        EXPECT_THAT(namelessControls(view), IsEmpty()) << rawValue(pane);
    }
    AboutView about(model.platform, [] {});
    EXPECT_THAT(namelessControls(about), IsEmpty());
    OnboardingView setup(model.platform, model.authorizer, model.preferences, [] {});
    EXPECT_THAT(namelessControls(setup), IsEmpty());
}

TEST_F(WindowsAccessibilityTest, TheSidebarIsAListOfPanes) {
    QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(view.findChild<SettingsSidebar*>());
    EXPECT_EQ(list->role(), Role::List);
    EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Settings"));
    ASSERT_EQ(list->childCount(), 6);
    EXPECT_EQ(list->child(0)->role(), Role::ListItem);
    EXPECT_EQ(list->child(4)->text(QAccessible::Name), QStringLiteral("Favourites"));
    EXPECT_TRUE(list->child(0)->state().selected);
}

TEST_F(WindowsAccessibilityTest, TheGeneralPaneIsRead) {
    EXPECT_THAT(heard(open(SettingsPane::general)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "General"},
                    {Role::CheckBox, "Launch Ferrowyn at login"},
                    {Role::StaticText, "Updates"},
                    {Role::Grouping, "Updates"},
                    {Role::CheckBox, "Check for updates automatically"},
                    {Role::StaticText, std::string(macUtilityTexts().settings.automaticUpdatesNote)},
                    {Role::StaticText, "Not checked yet."},
                    {Role::Button, "Check Now"},
                    {Role::StaticText, "Permissions"},
                    {Role::Grouping, "Permissions"},
                    {Role::StaticText, "Accessibility access granted"},
                }));
}

TEST_F(WindowsAccessibilityTest, TheShortcutPaneIsRead) {
    EXPECT_THAT(heard(open(SettingsPane::shortcut)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "Shortcut"},
                    {Role::StaticText, "Summon with"},
                    {Role::ComboBox, "Summon with"},
                    {Role::CheckBox, "Switch when the modifier is released"},
                    {Role::StaticText, "With this off, the switcher stays open until you press Return or Escape."},
                    {Role::StaticText, "While the switcher is open"},
                    {Role::Grouping, "While the switcher is open"},
                    {Role::StaticText, "Cycle List → Grouped → Grid"},
                    {Role::StaticText, "⌘L"},
                    {Role::StaticText, "Pin or unpin the highlighted app"},
                    {Role::StaticText, "⌘D"},
                    {Role::StaticText, "Jump straight to a row"},
                    {Role::StaticText, "⌘1–9"},
                    {Role::StaticText, "Move the selection"},
                    {Role::StaticText, "↑ ↓"},
                    {Role::StaticText, "Close without switching"},
                    {Role::StaticText, "esc"},
                }));
}

TEST_F(WindowsAccessibilityTest, TheAppearancePaneIsRead) {
    EXPECT_THAT(heard(open(SettingsPane::appearance)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "Appearance"},
                    {Role::StaticText, "Layout"},
                    {Role::Grouping, "Layout"},
                    {Role::RadioButton, "List"},
                    {Role::RadioButton, "Grouped"},
                    {Role::RadioButton, "Grid"},
                    {Role::StaticText,
                     "A flat list, one window per line — densest, and the fastest to scan when titles differ."},
                    {Role::StaticText, "Show up to 9 rows before scrolling"},
                    {Role::SpinBox, "Show up to 9 rows before scrolling"},
                    {Role::CheckBox, "Show shortcut hints"},
                }));
}

TEST_F(WindowsAccessibilityTest, TheWindowsPaneIsRead) {
    EXPECT_THAT(heard(open(SettingsPane::windows)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "Windows"},
                    {Role::StaticText, "Ordering"},
                    {Role::Grouping, "Ordering"},
                    {Role::CheckBox, "Show the active app's windows first"},
                    {Role::StaticText,
                     "Every window of the app you are in is grouped at the top, then everything "
                     "else by most recent use."},
                    {Role::StaticText, "Include"},
                    {Role::Grouping, "Include"},
                    {Role::CheckBox, "Minimised windows"},
                    {Role::CheckBox, "Windows on other Spaces"},
                    {Role::StaticText,
                     "A Space is a Desktop you switch between with Control-Arrow or Mission Control. "
                     "Turn this off to list only what is on the Desktop in front of you."},
                }));
}

TEST_F(WindowsAccessibilityTest, TheFavouritesPaneIsRead) {
    model.pin({"org.example.mail"});
    EXPECT_THAT(heard(open(SettingsPane::favourites)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "Favourites"},
                    {Role::CheckBox, "Show favourite apps first"},
                    {Role::StaticText,
                     "Press ⌘D while the switcher is open to pin or unpin the highlighted window's "
                     "app. Favourites are remembered per app rather than per window, so they survive "
                     "closing and reopening."},
                    {Role::StaticText, "Pinned apps"},
                    {Role::Grouping, "Pinned apps"},
                    {Role::ListItem, "mail"},
                    {Role::Button, "Remove mail from favourites"},
                    {Role::Button, "Remove All"},
                }));
}

TEST_F(WindowsAccessibilityTest, TheAboutPaneIsRead) {
    // The simulated clock starts with a year, which has not begun yet everywhere.
    const auto seconds = static_cast<qint64>(model.platform.mainLoop.wallTime().time_since_epoch().count());
    const int year = QDateTime::fromSecsSinceEpoch(seconds).date().year();
    EXPECT_THAT(heard(open(SettingsPane::about)),
                ElementsAreArray(std::vector<Read>{
                    {Role::StaticText, "About"},
                    {Role::Grouping, "About Ferrowyn, version 1.0"},
                    {Role::Graphic, "Ferrowyn"},
                    {Role::StaticText, "Ferrowyn"},
                    {Role::StaticText, "Version 1.0"},
                    {Role::StaticText, "Switch between every open window, not just apps."},
                    {Role::Button, "ferrowyn.example"},
                    {Role::StaticText, "© " + std::to_string(year) + " Ferrowyn"},
                }));
}

TEST_F(WindowsAccessibilityTest, NotesDescribeTheirControls) {
    const auto description = [](QWidget& control) {
        return QAccessible::queryAccessibleInterface(&control)->text(QAccessible::Description).toStdString();
    };
    QWidget& pane = open(SettingsPane::windows);
    EXPECT_EQ(description(*test::buttonNamed(pane, "Windows on other Spaces")),
              macUtilityTexts().settings.otherSpacesNote);
    QAbstractButton& order = *test::buttonNamed(pane, "Show the active app's windows first");
    EXPECT_EQ(description(order), macUtilityTexts().settings.activeAppFirstOnNote);
    order.click();
    EXPECT_EQ(description(order), macUtilityTexts().settings.activeAppFirstOffNote);
}

TEST_F(WindowsAccessibilityTest, ChoicesHaveTheirRoles) {
    EXPECT_THAT(heard(open(SettingsPane::shortcut)), Contains(Read(Role::ComboBox, "Summon with")));
    QAccessibleInterface* const trigger = QAccessible::queryAccessibleInterface(view.findChild<ChoiceBox*>());
    EXPECT_EQ(trigger->text(QAccessible::Value), QStringLiteral("Option + Tab"));
    model.preferences.modifier.set(SwitcherModifier::control);
    EXPECT_EQ(trigger->text(QAccessible::Value), QStringLiteral("Control + Tab"));
    EXPECT_EQ(trigger->textInterface()->text(0, trigger->textInterface()->characterCount()),
              QStringLiteral("Control + Tab"));
    EXPECT_FALSE(trigger->state().expanded);
    trigger->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(trigger->state().expanded);
    trigger->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_FALSE(trigger->state().expanded);
    const auto appearance = heard(open(SettingsPane::appearance));
    EXPECT_THAT(appearance, Contains(Read(Role::RadioButton, "Grouped")));
    EXPECT_THAT(appearance, Contains(Read(Role::SpinBox, "Show up to 9 rows before scrolling")));
    EXPECT_THAT(appearance, Contains(Read(Role::Grouping, "Layout")));
    model.pin({"org.example.mail"});
    const auto favourites = heard(open(SettingsPane::favourites));
    EXPECT_THAT(favourites, Contains(Read(Role::ListItem, "mail")));
    EXPECT_THAT(favourites, Contains(Read(Role::Button, "Remove mail from favourites")));
    EXPECT_THAT(heard(open(SettingsPane::about)), Contains(Read(Role::Grouping, "About Ferrowyn, version 1.0")));
}

TEST_F(WindowsAccessibilityTest, TheTabKeyGoesThroughEveryControlInReadingOrder) {
    model.pin({"org.example.mail", "org.example.maps"});
    EXPECT_THAT(tabOrder(SettingsPane::general),
                ElementsAre("Launch Ferrowyn at login", "Check for updates automatically", "Check Now"));
    EXPECT_THAT(tabOrder(SettingsPane::shortcut), ElementsAre("Summon with", "Switch when the modifier is released"));
    EXPECT_THAT(tabOrder(SettingsPane::appearance),
                ElementsAre("List", "Show up to 9 rows before scrolling", "Show shortcut hints"));
    EXPECT_THAT(tabOrder(SettingsPane::windows),
                ElementsAre("Show the active app's windows first", "Minimised windows", "Windows on other Spaces"));
    EXPECT_THAT(tabOrder(SettingsPane::favourites),
                ElementsAre("Show favourite apps first", "Remove mail from favourites", "Remove maps from favourites",
                            "Remove All"));
    EXPECT_THAT(tabOrder(SettingsPane::about), ElementsAre("ferrowyn.example"));
}

TEST_F(WindowsAccessibilityTest, SpaceWorksTheFocusedControl) {
    open(SettingsPane::windows);
    view.findChild<SettingsSidebar*>()->setFocus();
    press(*QApplication::focusWidget(), Qt::Key_Tab);
    press(*QApplication::focusWidget(), Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    EXPECT_FALSE(model.preferences.showActiveAppWindowsFirst.get());
    press(*QApplication::focusWidget(), Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    EXPECT_TRUE(model.preferences.showActiveAppWindowsFirst.get());
}

TEST_F(WindowsAccessibilityTest, TheKeyboardsPlaceIsSeen) {
    QWidget& pane = open(SettingsPane::windows);
    const auto picture = [&pane] {
        QImage image(pane.size(), QImage::Format_RGB32);
        pane.render(&image);
        return image;
    };
    view.findChild<SettingsSidebar*>()->setFocus();
    const QImage before = picture();
    press(*QApplication::focusWidget(), Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), test::buttonNamed(pane, "Show the active app's windows first"));
    EXPECT_NE(picture(), before);
}

TEST_F(WindowsAccessibilityTest, AFocusedControlIsScrolledIntoSight) {
    view.resize(560, 340);
    model.pin({"a.one", "a.two", "a.three", "a.four", "a.five", "a.six", "a.seven", "a.eight"});
    QWidget& pane = open(SettingsPane::favourites);
    QCoreApplication::processEvents();
    QWidget* const removeAll = test::buttonNamed(pane, "Remove All");
    ASSERT_TRUE(removeAll->visibleRegion().isEmpty()) << "it is out of sight at first";
    view.findChild<SettingsSidebar*>()->setFocus();
    for (int step = 0; step < 10; ++step) {
        press(*QApplication::focusWidget(), Qt::Key_Tab);
    }
    ASSERT_EQ(QApplication::focusWidget(), removeAll);
    QCoreApplication::processEvents();
    EXPECT_EQ(removeAll->visibleRegion().boundingRect(), removeAll->rect());
}

TEST_F(WindowsAccessibilityTest, TheSetupWindowIsRead) {
    UtilityWindow window(std::make_unique<OnboardingView>(model.platform, model.authorizer, model.preferences, [] {}),
                         false);
    model.desktop.setTrusted(false);
    model.authorizer.refresh();
    window.show();
    const auto all = heard(window);
    EXPECT_THAT(all, Contains(Read(Role::Graphic, "Ferrowyn")));
    EXPECT_THAT(all, Contains(Read(Role::StaticText, "Accessibility access required")));
    for (const char* const button : {"Open System Settings", "Request Access", "Reveal App", "Close"}) {
        EXPECT_THAT(all, Contains(Read(Role::Button, button)));
    }
    EXPECT_THAT(all, testing::Not(Contains(Read(Role::Button, "Done")))) << "what is hidden is not read";
}

}  // namespace
}  // namespace ferrowyn
