#include "ui/required_state.h"

#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QPointer>
#include <QVBoxLayout>
#include <string_view>
#include <utility>

#include "core/texts.h"
#include "core/window_presentation.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "services/accessibility_authorizer.h"
#include "ui/flow_layout.h"
#include "ui/settings_group.h"
#include "ui/text_label.h"
#include "ui/window_button.h"

namespace ferrowyn {

namespace {

constexpr int betweenParagraphs = 8;
constexpr int betweenSteps = 6;
/// The steps' texts stand under the titles, their numbers under the symbols.
constexpr int numberWidth = 16;
constexpr int behindNumber = 9;
constexpr int aboveButtons = 8;
constexpr int betweenButtons = 8;
constexpr int belowTitle = 4;

/// On a worker thread: a report asks the session bus, which may take its time. Until it is there the button is off.
void copyReport(const Platform& platform, QAbstractButton& button, const std::function<std::string()>& makeReport) {
    button.setEnabled(false);
    platform.backgroundWork.run(
        [makeReport, &mainLoop = platform.mainLoop, button = QPointer<QAbstractButton>(&button)] {
            mainLoop.post([report = makeReport(), button] {
                QGuiApplication::clipboard()->setText(QString::fromStdString(report));
                if (button != nullptr) {
                    button->setEnabled(true);
                }
            });
        });
}

QWidget* makeSteps(const WindowTexts::Onboarding& words) {
    auto* const steps = new QWidget;
    auto* const grid = new QGridLayout(steps);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(betweenSteps);
    grid->setHorizontalSpacing(behindNumber);
    grid->setColumnMinimumWidth(0, numberWidth);
    grid->setColumnStretch(1, 1);
    int row = 0;
    for (const std::string_view step : {words.firstStep, words.secondStep, words.thirdStep}) {
        auto* const number =
            new TextLabel(Phrase::verbatim(std::to_string(row + 1) + "."), TextStyle::body, Tone::secondary);
        number->setWordWrap(false);
        grid->addWidget(number, row, 0, Qt::AlignTop | Qt::AlignRight);
        grid->addWidget(new TextLabel({step, {}}, TextStyle::body), row, 1);
        ++row;
    }
    return steps;
}

}  // namespace

RequiredState::RequiredState(const Platform& platform, AccessibilityAuthorizer& authorizer,
                             std::function<std::string()> makeReport) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const group = new SettingsGroup;
    column->addWidget(group);
    const WindowTexts& texts = platform.texts.windows;
    const auto title = authorizer.canBecomeTrusted() ? texts.onboarding.requiredTitle : texts.serverUnusable;
    addExplanation(*group, title, texts, makeButtons(platform, authorizer, std::move(makeReport)));
    addTroubleshooting(*group, texts);
}

void RequiredState::addExplanation(SettingsGroup& group, std::string_view titleText, const WindowTexts& texts,
                                   QWidget* buttons) {
    const WindowTexts::Onboarding& words = texts.onboarding;
    auto* const block = new QWidget;
    auto* const column = new QVBoxLayout(block);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(betweenParagraphs);
    auto* const title = new TextLabel({titleText, {}}, TextStyle::bodyEmphasised);
    title->setSymbol(WindowPresentation::permissionSymbol, Tone::warning);
    column->addWidget(title);
    column->addWidget(new TextLabel({words.requiredExplanation, {}}, TextStyle::note, Tone::secondary));
    column->addWidget(makeSteps(words));
    column->addSpacing(aboveButtons - betweenParagraphs / 2);
    column->addWidget(buttons);
    group.addInsetRow(block);
}

void RequiredState::addTroubleshooting(SettingsGroup& group, const WindowTexts& texts) {
    auto* const block = new QWidget;
    auto* const column = new QVBoxLayout(block);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(belowTitle);
    auto* const title = new TextLabel({texts.onboarding.troubleTitle, {}}, TextStyle::sectionTitle);
    title->setSymbol("wrench.and.screwdriver", Tone::secondary);
    column->addWidget(title);
    column->addWidget(new TextLabel({texts.onboarding.troubleText, {}}, TextStyle::note, Tone::secondary));
    group.addInsetRow(block);
}

QWidget* RequiredState::makeButtons(const Platform& platform, AccessibilityAuthorizer& authorizer,
                                    std::function<std::string()> makeReport) {
    const WindowTexts::Onboarding& words = platform.texts.windows.onboarding;
    auto* const buttons = new QWidget;
    auto* const line = new FlowLayout(betweenButtons);
    buttons->setLayout(line);
    const auto add = [this, line](std::string_view text, std::function<void()> action) {
        const auto look = line->count() == 0 ? WindowButton::Look::primary : WindowButton::Look::standard;
        auto* const button = new WindowButton({text, {}}, look);
        line->addWidget(button);
        if (action) {
            connect(button, &QAbstractButton::clicked, this, std::move(action));
        }
        return button;
    };
    if (!words.openSystemSettings.empty()) {
        add(words.openSystemSettings, [&authorizer] { authorizer.openAccessibilitySettings(); });
    }
    add(words.requestAccess, [&authorizer] { authorizer.requestTrust(); });
    if (!words.copyReport.empty() && makeReport) {
        auto* const button = add(words.copyReport, nullptr);
        connect(button, &QAbstractButton::clicked, this,
                [&platform, button, make = std::move(makeReport)] { copyReport(platform, *button, make); });
    }
    add(words.revealApp, [&application = platform.application] { application.revealInFileManager(); });
    return buttons;
}

}  // namespace ferrowyn
