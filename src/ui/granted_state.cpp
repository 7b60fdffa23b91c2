#include "ui/granted_state.h"

#include <QGridLayout>
#include <QVBoxLayout>
#include <utility>
#include <vector>

#include "core/texts.h"
#include "services/preferences.h"
#include "ui/key_cap_label.h"
#include "ui/key_lines.h"
#include "ui/settings_group.h"
#include "ui/text_label.h"
#include "ui/window_button.h"

namespace ferrowyn {

namespace {

constexpr int betweenKeys = 7;
constexpr int betweenColumns = 14;
constexpr int belowTitle = 4;
constexpr int aboveButton = 16;

}  // namespace

GrantedState::GrantedState(const TextTable& texts, const Preferences& preferences, std::function<void()> onDone) {
    const WindowTexts::Onboarding& words = texts.windows.onboarding;
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
    std::vector<KeyCapLabel*> caps;
    for (const auto& line : key_lines::forSetup(preferences.modifier.get(), texts)) {
        const int row = static_cast<int>(caps.size());
        caps.push_back(new KeyCapLabel);
        grid->addWidget(caps.back(), row, 0, Qt::AlignRight);
        grid->addWidget(new TextLabel({line.description, {}}, TextStyle::body), row, 1);
    }
    group->addInsetRow(keys);
    modifierSubscription_ = preferences.modifier.published().subscribe([caps, &texts](SwitcherModifier trigger) {
        const auto lines = key_lines::forSetup(trigger, texts);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            caps.at(index)->setText(QString::fromStdString(lines.at(index).keys));
        }
    });
    auto* const typing = new QWidget;
    auto* const typingColumn = new QVBoxLayout(typing);
    typingColumn->setContentsMargins(0, 0, 0, 0);
    typingColumn->setSpacing(belowTitle);
    for (const auto hint : {words.typingHint, words.stayingOpenHint}) {
        typingColumn->addWidget(new TextLabel({hint, {}}, TextStyle::note, Tone::secondary));
    }
    group->addInsetRow(typing);

    auto* const done = new WindowButton({words.done, {}}, WindowButton::Look::primary);
    column->addSpacing(aboveButton);
    column->addWidget(done, 0, Qt::AlignHCenter);
    connect(done, &QAbstractButton::clicked, this, [told = std::move(onDone)] { told(); });
}

}  // namespace ferrowyn
