#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QLabel>
#include <stdexcept>
#include <string>
#include <vector>

#include "ui/windows/labels.h"

namespace ferrowyn::test {

/// What a person would read in the widget now, from top to bottom; not what stands on buttons and key caps.
inline std::vector<std::string> visibleTexts(const QWidget& widget) {
    std::vector<std::string> texts;
    for (const auto* const label : widget.findChildren<QLabel*>()) {
        if (label->isVisibleTo(&widget) && dynamic_cast<const KeyCapLabel*>(label) == nullptr) {
            texts.push_back(label->text().toStdString());
        }
    }
    return texts;
}

inline std::vector<std::string> visibleKeyCaps(const QWidget& widget) {
    std::vector<std::string> caps;
    for (const auto* const cap : widget.findChildren<KeyCapLabel*>()) {
        if (cap->isVisibleTo(&widget)) {
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

}  // namespace ferrowyn::test
