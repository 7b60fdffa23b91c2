#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QStackedWidget>
#include <string>
#include <vector>

#include "platform/simulated/simulated_system.h"
#include "tests/ui/widget_search.h"
#include "tests/ui/windows_model.h"
#include "ui/windows/buttons.h"
#include "ui/windows/settings_view.h"

namespace ferrowyn::test {

class SettingsViewTest : public testing::Test {
protected:
    explicit SettingsViewTest(const TextTable& texts = macTexts()) : model(texts) {}

    /// The page that is shown, after it was chosen in the sidebar.
    QWidget& open(SettingsPane pane) {
        view.select(pane);
        return *view.findChild<QStackedWidget*>()->currentWidget();
    }

    /// Both ways, whatever the setting's default.
    void expectBound(SettingsPane pane, const std::string& text, Preferences::Setting<bool>& setting) {
        QAbstractButton& control = *buttonNamed(open(pane), text);
        EXPECT_EQ(control.isChecked(), setting.get()) << text << " shows the setting";
        for (const bool isOn : {!setting.get(), setting.get()}) {
            control.click();
            EXPECT_EQ(setting.get(), isOn) << text << " sets the setting at once";
            EXPECT_EQ(control.isChecked(), isOn) << text;
        }
        for (const bool isOn : {!setting.get(), setting.get()}) {
            const auto written = model.desktop.storedValues().size();
            setting.set(isOn);
            EXPECT_EQ(control.isChecked(), isOn) << text << " follows the setting";
            EXPECT_EQ(model.desktop.storedValues().size(), written + 1) << text << " writes nothing when it follows";
        }
    }

    static void press(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                      const QString& text = {}) {
        QKeyEvent down(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&widget, &down);
        QKeyEvent up(QEvent::KeyRelease, key, modifiers, text);
        QApplication::sendEvent(&widget, &up);
    }

    WindowsModel model;
    SettingsView view{model.platform, model.services};
};

}  // namespace ferrowyn::test
