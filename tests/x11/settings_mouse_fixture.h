#pragma once

#include <filesystem>
#include <string>

#include "tests/x11/windows_fixture.h"

namespace ferrowyn::x11test {

/// What a person does with the mouse in the settings window.
class SettingsMouseTest : public WindowsFixture {
protected:
    void openPane(const std::string& name) {
        open("--settings", settingsTitle);
        choosePane(name);
    }
    void restartAt(const std::string& pane) {
        restart();
        openPane(pane);
    }
    void toggle(const std::string& name, bool isOn) {
        click(settingsTitle, "check box", name);
        expectChecked(settingsTitle, "check box", name, isOn);
    }
    void choose(const std::string& trigger) {
        click(settingsTitle, "combo box", "Summon with");
        click(settingsTitle, "list item", trigger);
        EXPECT_TRUE(reader->waitUntil([&] { return shownTrigger() == trigger; })) << shownTrigger();
        // Its list keeps the mouse until it is gone.
        EXPECT_TRUE(reader->waitUntil([&] { return !shows(settingsTitle, "list item", trigger); }));
    }
    [[nodiscard]] std::string shownTrigger() const {
        const auto window = shown(settingsTitle);
        const auto* const choice = window.find("combo box", "Summon with");
        return choice == nullptr ? "" : choice->text;
    }
    /// Alt and Tab are the window manager's again.
    void expectTheManagerSwitches() {
        constexpr milliseconds perPress{2000};
        const Deadline deadline(patience);
        const auto active = desktop.activeWindow();
        const auto shownBefore = desktop.shownTopLevels();
        const auto hasSwitched = [&] { return desktop.activeWindow() != active; };
        // Pressed until it answers, for under load it misses one now and then. It has a popup, and misses the release
        // of Alt while it is still about to take the keyboard for it.
        while (!hasSwitched() && !deadline.hasPassed()) {
            input.press(key::leftAlt);
            input.tap(key::tab);
            static_cast<void>(desktop.waitUntil([&] { return desktop.shownTopLevels() != shownBefore; }, perPress));
            EXPECT_FALSE(desktop.visiblePanel()) << "the old trigger opened the switcher";
            input.release(key::leftAlt);
            static_cast<void>(desktop.waitUntil(hasSwitched, perPress));
        }
        EXPECT_TRUE(hasSwitched()) << "waited for the window manager to switch";
        EXPECT_TRUE(desktop.waitForFreeKeyboard());
    }
    [[nodiscard]] static std::string rows(int count) {
        return "Show up to " + std::to_string(count) + " rows before scrolling";
    }
    [[nodiscard]] std::filesystem::path autostartEntry() const {
        return server.home().path() + "/.config/autostart/com.larkmoor.ferrowyn.desktop";
    }
};

}  // namespace ferrowyn::x11test
