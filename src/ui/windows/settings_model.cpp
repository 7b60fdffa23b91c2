#include "ui/windows/settings_model.h"

#include <utility>

namespace ferrowyn {

namespace settings_lines {

namespace {

constexpr std::string_view goodSymbol = "checkmark.circle.fill";
constexpr std::string_view attentionSymbol = "exclamationmark.triangle.fill";

}  // namespace

std::optional<StatusLine> updateStatus(const UpdateChecker::State& state, const UtilityTexts& texts) {
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

StatusLine noUpdateServer(const UtilityTexts& texts) {
    return {"", StatusLine::Tint::none, {texts.settings.noUpdateServer, {}}};
}

StatusLine permissionStatus(AccessibilityStatus status, bool canBecomeTrusted, const UtilityTexts& texts) {
    if (status == AccessibilityStatus::trusted) {
        return {goodSymbol, StatusLine::Tint::good, {texts.settings.permissionGranted, {}}};
    }
    const auto text = canBecomeTrusted ? texts.settings.permissionRequired : texts.serverUnusable;
    return {attentionSymbol, StatusLine::Tint::attention, {text, {}}};
}

StatusLine secureInputStatus(const UtilityTexts& texts) {
    return {"keyboard.badge.ellipsis", StatusLine::Tint::attention, {texts.settings.secureInput, {}}};
}

StatusLine loginItemMessage(std::string_view message) {
    return {attentionSymbol, StatusLine::Tint::attention, {message, {}}};
}

std::string_view modifierName(SwitcherModifier modifier, const UtilityTexts& texts) {
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

Phrase summonChoice(SwitcherModifier modifier, const UtilityTexts& texts) {
    return {texts.settings.summonChoice, {std::string(modifierName(modifier, texts))}};
}

bool showsReplacementNote(SwitcherModifier modifier) {
    return modifier == SwitcherModifier::command;
}

std::string_view layoutDescription(SwitcherLayout layout, const UtilityTexts& texts) {
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

Phrase maximumRows(int rows, const UtilityTexts& texts) {
    return {texts.settings.maximumRows, {std::to_string(rows)}};
}

std::string_view activeAppFirstNote(bool isOn, const UtilityTexts& texts) {
    return isOn ? texts.settings.activeAppFirstOnNote : texts.settings.activeAppFirstOffNote;
}

Phrase favouritesFirstNote(SwitcherModifier trigger, const TextTable& texts) {
    return {texts.utility.settings.favouritesFirstNote, {key_lines::commandKeys(trigger, "D", texts)}};
}

Phrase removeHelp(std::string applicationName, const UtilityTexts& texts) {
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
    const UtilityTexts::Settings& words = texts.utility.settings;
    return {
        {commandKeys(trigger, "L", texts), words.keyCycle},      {commandKeys(trigger, "D", texts), words.keyPin},
        {commandKeys(trigger, rowDigits, texts), words.keyJump}, {"↑ ↓", words.keyMove},
        {std::string(texts.escapeKey), words.keyClose},
    };
}

std::vector<KeyLine> forSetup(SwitcherModifier trigger, const TextTable& texts) {
    const UtilityTexts::Onboarding& words = texts.utility.onboarding;
    const std::string_view modifier = texts.modifierKey(trigger);
    const std::string shifted = combination(texts.utility.shiftKey, texts.tabKey, texts);
    return {
        {triggerKeys(trigger, texts), words.keyOpen},
        {combination(modifier, shifted, texts), words.keyPrevious},
        {combination(modifier, rowDigits, texts), words.keyJump},
        {std::string(texts.escapeKey), words.keyCancel},
    };
}

}  // namespace key_lines

}  // namespace ferrowyn
