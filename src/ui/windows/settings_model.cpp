#include "ui/windows/settings_model.h"

#include <utility>

namespace ferrowyn {

namespace settings_lines {

namespace {

constexpr std::string_view goodSymbol = "checkmark.circle.fill";
constexpr std::string_view attentionSymbol = "exclamationmark.triangle.fill";

}  // namespace

std::optional<StatusLine> updateStatus(const UpdateChecker::State& state, const WindowTexts& texts) {
    using Tint = StatusLine::Tint;
    if (std::holds_alternative<UpdateChecker::Checking>(state)) {
        return std::nullopt;
    }
    if (std::holds_alternative<UpdateChecker::UpToDate>(state)) {
        return StatusLine{goodSymbol, Tint::good, {texts.settings.upToDate, {}}};
    }
    if (const auto* const available = std::get_if<UpdateChecker::UpdateAvailable>(&state)) {
        return StatusLine{"arrow.down.circle.fill",
                          Tint::attention,
                          {texts.settings.updateAvailable, {available->release.version.original()}}};
    }
    if (const auto* const failed = std::get_if<UpdateChecker::Failed>(&state)) {
        return StatusLine{attentionSymbol, Tint::attention, failed->text};
    }
    return StatusLine{"", Tint::none, {texts.settings.notChecked, {}}};
}

StatusLine noUpdateServer(const WindowTexts& texts) {
    return {"", StatusLine::Tint::none, {texts.settings.noUpdateServer, {}}};
}

StatusLine permissionStatus(AccessibilityStatus status, bool canBecomeTrusted, const WindowTexts& texts) {
    if (status == AccessibilityStatus::trusted) {
        return {goodSymbol, StatusLine::Tint::good, {texts.settings.permissionGranted, {}}};
    }
    const auto text = canBecomeTrusted ? texts.settings.permissionRequired : texts.serverUnusable;
    return {attentionSymbol, StatusLine::Tint::attention, {text, {}}};
}

StatusLine secureInputStatus(const WindowTexts& texts) {
    return {"keyboard.badge.ellipsis", StatusLine::Tint::attention, {texts.settings.secureInput, {}}};
}

StatusLine loginItemMessage(std::string_view message) {
    return {attentionSymbol, StatusLine::Tint::attention, {message, {}}};
}

std::string_view modifierName(SwitcherModifier modifier, const WindowTexts& texts) {
    switch (modifier) {
        case SwitcherModifier::option:
            return texts.settings.optionName;
        case SwitcherModifier::command:
            return texts.settings.commandName;
        case SwitcherModifier::control:
            return texts.settings.controlName;
    }
    return texts.settings.optionName;
}

Phrase summonChoice(SwitcherModifier modifier, const WindowTexts& texts) {
    return {texts.settings.summonChoice, {std::string(modifierName(modifier, texts))}};
}

bool showsReplacementNote(SwitcherModifier modifier) {
    return modifier == SwitcherModifier::command;
}

std::string_view layoutDescription(SwitcherLayout layout, const WindowTexts& texts) {
    switch (layout) {
        case SwitcherLayout::list:
            return texts.settings.listDescription;
        case SwitcherLayout::grouped:
            return texts.settings.groupedDescription;
        case SwitcherLayout::grid:
            return texts.settings.gridDescription;
    }
    return texts.settings.listDescription;
}

Phrase maximumRows(int rows, const WindowTexts& texts) {
    return {texts.settings.maximumRows, {std::to_string(rows)}};
}

std::string_view activeAppFirstNote(bool isOn, const WindowTexts& texts) {
    return isOn ? texts.settings.activeAppFirstOnNote : texts.settings.activeAppFirstOffNote;
}

Phrase favouritesFirstNote(SwitcherModifier trigger, const TextTable& texts) {
    return {texts.windows.settings.favouritesFirstNote, {key_lines::commandKeys(trigger, "D", texts)}};
}

Phrase removeHelp(std::string applicationName, const WindowTexts& texts) {
    return {texts.settings.removeHelp, {std::move(applicationName)}};
}

}  // namespace settings_lines

namespace key_lines {

namespace {

constexpr std::string_view rowDigits = "1–9";

std::string combination(std::string_view modifier, std::string_view key, const TextTable& texts) {
    return std::string(modifier).append(texts.keySeparator).append(key);
}

}  // namespace

std::string commandKeys(SwitcherModifier trigger, std::string_view key, const TextTable& texts) {
    return combination(texts.commandKeyDuringSession(trigger), key, texts);
}

std::string triggerKeys(SwitcherModifier trigger, const TextTable& texts) {
    return combination(texts.modifierKey(trigger), texts.tabKey, texts);
}

std::vector<KeyLine> whileOpen(SwitcherModifier trigger, const TextTable& texts) {
    const WindowTexts::Settings& words = texts.windows.settings;
    return {
        {commandKeys(trigger, "L", texts), words.keyCycle},      {commandKeys(trigger, "D", texts), words.keyPin},
        {commandKeys(trigger, rowDigits, texts), words.keyJump}, {"↑ ↓", words.keyMove},
        {std::string(texts.escapeKey), words.keyClose},
    };
}

std::vector<KeyLine> forSetup(SwitcherModifier trigger, const TextTable& texts) {
    const WindowTexts::Onboarding& words = texts.windows.onboarding;
    const std::string_view modifier = texts.modifierKey(trigger);
    const std::string shifted = combination(texts.windows.shiftKey, texts.tabKey, texts);
    return {
        {triggerKeys(trigger, texts), words.keyOpen},
        {combination(modifier, shifted, texts), words.keyPrevious},
        {combination(modifier, rowDigits, texts), words.keyJump},
        {std::string(texts.escapeKey), words.keyCancel},
    };
}

}  // namespace key_lines

}  // namespace ferrowyn
