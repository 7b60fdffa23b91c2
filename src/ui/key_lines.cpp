#include "ui/key_lines.h"

namespace ferrowyn::key_lines {

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

}  // namespace ferrowyn::key_lines
