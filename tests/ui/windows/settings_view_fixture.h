#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/simulated/simulated_system.h"
#include "tests/ui/interface_models.h"
#include "ui/windows/labels.h"
#include "ui/windows/settings_view.h"

namespace ferrowyn::test {

/// What a person would read in the widget now, from top to bottom; not what stands on buttons and key caps.
inline std::vector<std::string> visibleTexts(const QWidget& widget) {
    std::vector<std::string> texts;
    for (const auto* const label : widget.findChildren<QLabel*>()) {
        if (label->isVisibleTo(&widget) && label->frameShape() == QFrame::NoFrame) {
            texts.push_back(label->text().toStdString());
        }
    }
    return texts;
}

inline std::vector<std::string> visibleKeyCaps(const QWidget& widget) {
    std::vector<std::string> caps;
    for (const auto* const cap : widget.findChildren<QLabel*>()) {
        if (cap->isVisibleTo(&widget) && cap->frameShape() != QFrame::NoFrame) {
            caps.push_back(cap->text().toStdString());
        }
    }
    return caps;
}

inline std::vector<std::string> visibleButtons(const QWidget& widget) {
    std::vector<std::string> names;
    for (const auto* const button : widget.findChildren<QAbstractButton*>()) {
        if (button->isVisibleTo(&widget)) {
            names.push_back((button->text().isEmpty() ? button->accessibleName() : button->text()).toStdString());
        }
    }
    return names;
}

/// A visible button, switch or choice with this text or accessible name.
inline QAbstractButton* buttonNamed(const QWidget& widget, const std::string& name) {
    for (auto* const button : widget.findChildren<QAbstractButton*>()) {
        const QString wanted = QString::fromStdString(name);
        if (button->isVisibleTo(&widget) && (button->text() == wanted || button->accessibleName() == wanted)) {
            return button;
        }
    }
    throw std::runtime_error("no button \"" + name + "\"");
}

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

    UtilityModel model;
    SettingsView view{model.platform, model.services};
};

}  // namespace ferrowyn::test
