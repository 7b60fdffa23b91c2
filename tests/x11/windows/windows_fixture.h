#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/accessibility_client.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/windows/application_fixture.h"

namespace ferrowyn::x11test {

/// The program's own windows and its menu on a private desktop with a private bus, seen as assistive technology sees
/// them and used with the mouse and the keyboard. Beside "Letter" and "Report" of an application "Writer" there are
/// "News", "Weather" and "Maps" of an application "Browser"; "Report" is the active one, then comes the latest.
class WindowsFixture : public ApplicationFixture {
protected:
    using Lines = std::vector<std::string>;
    using State = AccessibleNode::State;

    static constexpr const char* settingsTitle = "Ferrowyn Settings";
    static constexpr const char* setupTitle = "Ferrowyn Setup";
    static constexpr const char* aboutTitle = "About Ferrowyn";

    WindowsFixture();
    void TearDown() override;

    /// Starts the program, for the first time or after it was ended, and waits until it lists all windows.
    void start();
    void end();
    void restart();
    /// Shows the window that the command line's option opens, until it can be read and used where it is.
    void open(const std::string& option, const std::string& title);
    /// For a window that was opened another way.
    void waitUntilUsable(const std::string& title);
    void startTray();

    /// What the window shows now; without children when it shows nothing.
    [[nodiscard]] AccessibleNode shown(const std::string& title) const;
    /// Waits until the window shows a control of this role and name; there must be one.
    [[nodiscard]] AccessibleNode control(const std::string& title, const std::string& role,
                                         const std::string& name) const;
    /// Whether there is one now.
    [[nodiscard]] bool shows(const std::string& title, const std::string& role, const std::string& name) const;
    /// Waits until the window shows exactly these lines.
    void expectLines(const std::string& title, const Lines& lines);
    /// Waits until the window shows a control of this role and name, and whether it is checked.
    void expectChecked(const std::string& title, const std::string& role, const std::string& name, bool isChecked);
    /// Waits until the window shows a label with this text.
    void expectLabel(const std::string& title, const std::string& text);

    /// Clicks where the window says that the control is: in its middle, or so far from its left edge, or from its right
    /// one when negative.
    void click(const std::string& title, const std::string& role, const std::string& name, int horizontally = 0);
    /// Clicks the settings window's entry for the pane, and waits until the pane is shown.
    void choosePane(const std::string& name);
    /// Waits until the program has told that the focus is there.
    void expectFocus(const std::string& role, const std::string& name);

    /// Waits until the settings file has this value.
    void expectSetting(const std::string& section, const std::string& key, const std::string& value);

    /// Opens the switcher by Tab with this modifier held, and waits until its rows and headings read so and it is as
    /// wide. It is left again without switching.
    void expectSwitcher(const Lines& lines, int width, std::uint8_t modifier = key::leftAlt);
    /// Opens the switcher and waits until it is as high as asked; how high it is.
    [[nodiscard]] int switcherHeight(const std::function<bool(int)>& isIt);

    void clickTrayIcon();
    /// Clicks the program's icon in the tray and waits for its menu.
    void openMenu();
    [[nodiscard]] std::optional<AccessibleNode> menu() const;
    /// There must be one.
    [[nodiscard]] AccessibleNode menuRow(const std::string& name) const;
    void waitUntilMenuIsGone();
    /// Lets go of the key only once the menu is gone, as a hand is not quicker. Otherwise its release may be the menu's
    /// too, and Qt loses an event that a screen reader is asked about when its window is gone by the answer.
    void closeMenuBy(std::uint8_t keyCode);
    void expectMenu(const Lines& lines);
    void chooseFromMenu(const std::string& row);

    /// As the copyright line has it.
    [[nodiscard]] static std::string thisYear();

    ApplicationProcess browser;
    std::unique_ptr<AccessibilityClient> reader;
    std::unique_ptr<TrayHostProcess> tray;

private:
    [[nodiscard]] std::optional<AccessibleNode> panel() const;
    [[nodiscard]] bool isSwitcherAsWide(int width) const;
    [[nodiscard]] std::string setting(const std::string& section, const std::string& key) const;
    void openSwitcher(std::uint8_t modifier);
    void leaveSwitcher(std::uint8_t modifier);
};

}  // namespace ferrowyn::x11test
