#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <string_view>

namespace ferrowyn {

struct Platform;
struct WindowTexts;
class AccessibilityAuthorizer;
class SettingsGroup;

/// The part of the setup window that says what is missing and how to repair it. Main thread. The platform and the
/// authorizer outlive it.
class RequiredState final : public QWidget {
    Q_OBJECT

public:
    RequiredState(const Platform& platform, AccessibilityAuthorizer& authorizer,
                  std::function<std::string()> makeReport);

private:
    void addExplanation(SettingsGroup& group, std::string_view titleText, const WindowTexts& texts, QWidget* buttons);
    void addTroubleshooting(SettingsGroup& group, const WindowTexts& texts);
    [[nodiscard]] QWidget* makeButtons(const Platform& platform, AccessibilityAuthorizer& authorizer,
                                       std::function<std::string()> makeReport);
};

}  // namespace ferrowyn
