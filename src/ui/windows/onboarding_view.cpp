#include "ui/windows/onboarding_view.h"

#include <QClipboard>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPointer>
#include <QVBoxLayout>
#include <string_view>
#include <utility>
#include <vector>

#include "core/texts.h"
#include "core/window_presentation.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "services/accessibility_authorizer.h"
#include "services/preferences.h"
#include "ui/windows/about_view.h"
#include "ui/windows/controls.h"
#include "ui/windows/flow_layout.h"
#include "ui/windows/labels.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/settings_model.h"

namespace ferrowyn {

namespace {

/// The part of the setup window that says what is missing and how to repair it. Main thread. The platform and the
/// authorizer outlive it.
class RequiredState final : public QWidget {
public:
    RequiredState(const Platform& platform, AccessibilityAuthorizer& authorizer,
                  std::function<std::string()> makeReport);

private:
    void addExplanation(SettingsGroup& group, std::string_view titleText, const UtilityTexts& texts, QWidget* buttons);
    void addTroubleshooting(SettingsGroup& group, const UtilityTexts& texts);
    [[nodiscard]] QWidget* makeButtons(const Platform& platform, AccessibilityAuthorizer& authorizer,
                                       std::function<std::string()> makeReport);
};

constexpr int betweenParagraphs = 8;
constexpr int betweenSteps = 6;
/// Aligns the texts of the steps with the titles, and their numbers with the symbols.
constexpr int numberWidth = 16;
constexpr int behindNumber = 9;
constexpr int aboveButtons = 8;
constexpr int betweenButtons = 8;
/// Used by both parts.
constexpr int belowTitle = 4;

/// Makes the report on a worker thread, because it asks the session bus, which may be slow. The button is disabled
/// until the report is there.
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

QWidget* makeSteps(const UtilityTexts::Onboarding& words) {
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

RequiredState::RequiredState(const Platform& platform, AccessibilityAuthorizer& authorizer,
                             std::function<std::string()> makeReport) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const group = new SettingsGroup;
    column->addWidget(group);
    const UtilityTexts& texts = platform.texts.utility;
    const auto title = authorizer.canBecomeTrusted() ? texts.onboarding.requiredTitle : texts.serverUnusable;
    addExplanation(*group, title, texts, makeButtons(platform, authorizer, std::move(makeReport)));
    addTroubleshooting(*group, texts);
}

void RequiredState::addExplanation(SettingsGroup& group, std::string_view titleText, const UtilityTexts& texts,
                                   QWidget* buttons) {
    const UtilityTexts::Onboarding& words = texts.onboarding;
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

void RequiredState::addTroubleshooting(SettingsGroup& group, const UtilityTexts& texts) {
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
    const UtilityTexts::Onboarding& words = platform.texts.utility.onboarding;
    auto* const buttons = new QWidget;
    auto* const line = new FlowLayout(betweenButtons);
    buttons->setLayout(line);
    const auto add = [this, line](std::string_view text, std::function<void()> action) {
        auto* const button = line->count() == 0 ? makePrimaryButton({text, {}}) : makeButton({text, {}});
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

/// The part of the setup window that shows how to use the switcher, once it can be used. Main thread. The texts and
/// preferences outlive it.
class GrantedState final : public QWidget {
public:
    GrantedState(const TextTable& texts, const Preferences& preferences, std::function<void()> onDone);

private:
    Subscription modifierSubscription_;
};

constexpr int betweenKeys = 7;
constexpr int betweenColumns = 14;
constexpr int aboveButton = 16;

GrantedState::GrantedState(const TextTable& texts, const Preferences& preferences, std::function<void()> onDone) {
    const UtilityTexts::Onboarding& words = texts.utility.onboarding;
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* const group = new SettingsGroup;
    column->addWidget(group);

    auto* const head = new QWidget;
    auto* const headColumn = new QVBoxLayout(head);
    headColumn->setContentsMargins(0, 0, 0, 0);
    headColumn->setSpacing(belowTitle);
    auto* const title = new TextLabel({words.grantedTitle, {}}, TextStyle::bodyEmphasised);
    title->setSymbol("checkmark.circle.fill", Tone::success);
    headColumn->addWidget(title);
    headColumn->addWidget(new TextLabel({words.grantedDetail, {}}, TextStyle::note, Tone::secondary));
    group->addInsetRow(head);

    auto* const keys = new QWidget;
    auto* const grid = new QGridLayout(keys);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setVerticalSpacing(betweenKeys);
    grid->setHorizontalSpacing(betweenColumns);
    grid->setColumnStretch(1, 1);
    std::vector<TextLabel*> caps;
    for (const auto& line : key_lines::forSetup(preferences.modifier.get(), texts)) {
        const int row = static_cast<int>(caps.size());
        caps.push_back(TextLabel::keyCap());
        grid->addWidget(caps.back(), row, 0, Qt::AlignRight);
        grid->addWidget(new TextLabel({line.description, {}}, TextStyle::body), row, 1);
    }
    group->addInsetRow(keys);
    modifierSubscription_ = bindKeyCaps(caps, preferences.modifier.published(), [&texts](SwitcherModifier trigger) {
        return key_lines::forSetup(trigger, texts);
    });
    auto* const typing = new QWidget;
    auto* const typingColumn = new QVBoxLayout(typing);
    typingColumn->setContentsMargins(0, 0, 0, 0);
    typingColumn->setSpacing(belowTitle);
    for (const auto hint : {words.typingHint, words.stayingOpenHint}) {
        typingColumn->addWidget(new TextLabel({hint, {}}, TextStyle::note, Tone::secondary));
    }
    group->addInsetRow(typing);

    auto* const done = makePrimaryButton({words.done, {}});
    column->addSpacing(aboveButton);
    column->addWidget(done, 0, Qt::AlignHCenter);
    connect(done, &QAbstractButton::clicked, this, [told = std::move(onDone)] { told(); });
}

constexpr int windowWidth = 480;
constexpr QMargins margins(34, 28, 34, 22);
constexpr int iconSize = 64;
constexpr int belowIcon = 10;
constexpr int belowName = 5;
constexpr int belowTagline = 2;
constexpr int aboveState = 20;
constexpr int aboveFooter = 18;

QWidget* makeHeader(const BundleInfo& bundle, const UtilityTexts& texts) {
    const std::string name = about_lines::productName(bundle);
    auto* const header = new QWidget;
    auto* const column = new QVBoxLayout(header);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new ProductIcon(iconSize, QString::fromStdString(name)), 0, Qt::AlignHCenter);
    column->addSpacing(belowIcon);
    column->addWidget(TextLabel::centred(Phrase::verbatim(name), TextStyle::productName, Tone::primary));
    column->addSpacing(belowName);
    column->addWidget(TextLabel::centred({texts.about.tagline, {}}, TextStyle::body, Tone::secondary));
    column->addSpacing(belowTagline);
    column->addWidget(TextLabel::centred(about_lines::versionLine(bundle, texts), TextStyle::note, Tone::secondary));
    return header;
}

}  // namespace

OnboardingView::OnboardingView(const Platform& platform, AccessibilityAuthorizer& authorizer,
                               const Preferences& preferences, std::function<void()> onDone,
                               std::function<std::string()> makeReport)
    : onDone_(std::move(onDone)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margins);
    column->setSpacing(0);
    column->addWidget(makeHeader(platform.application.bundleInfo(), platform.texts.utility));
    column->addSpacing(aboveState);
    auto* const granted = new GrantedState(platform.texts, preferences, [this] { onDone_(); });
    auto* const required = new RequiredState(platform, authorizer, std::move(makeReport));
    column->addWidget(granted);
    column->addWidget(required);
    column->addSpacing(aboveFooter);
    column->addWidget(makeFooter(platform));
    setFixedWidth(windowWidth);
    statusSubscription_ = authorizer.status().subscribe([granted, required](AccessibilityStatus status) {
        // Hide first: for a moment the window would be as high as both.
        const bool isTrusted = status == AccessibilityStatus::trusted;
        (isTrusted ? static_cast<QWidget*>(required) : granted)->setVisible(false);
        (isTrusted ? static_cast<QWidget*>(granted) : required)->setVisible(true);
    });
}

OnboardingView::~OnboardingView() = default;

QWidget* OnboardingView::makeFooter(const Platform& platform) {
    auto* const footer = new QWidget;
    auto* const line = new QHBoxLayout(footer);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const close = makeButton({platform.texts.utility.onboarding.close, {}});
    line->addWidget(makeSiteLink(platform));
    line->addStretch();
    line->addWidget(close);
    connect(close, &QAbstractButton::clicked, this, [this] { onDone_(); });
    return footer;
}

}  // namespace ferrowyn
