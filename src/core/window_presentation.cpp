#include "core/window_presentation.h"

namespace ferrowyn {

namespace WindowPresentation {

namespace {

std::string keyCombination(std::string_view modifier, std::string_view key, const TextTable& texts) {
    return std::string(modifier).append(texts.keySeparator).append(key);
}

}  // namespace

std::optional<Badge> badge(const AppWindow& window, const TextTable& texts) {
    if (window.isMinimized) {
        return Badge{"Minimised", "arrow.down.right.and.arrow.up.left", Tint::orange};
    }
    if (window.isFullScreen) {
        return Badge{"Full Screen", "arrow.up.left.and.arrow.down.right", Tint::blue};
    }
    if (!window.isOnActiveSpace) {
        return Badge{std::string(texts.otherSpaceBadge), "rectangle.on.rectangle", Tint::purple};
    }
    return std::nullopt;
}

std::vector<ShortcutHint> footerHints(SwitcherModifier trigger, SwitcherLayout layout, const TextTable& texts) {
    std::vector<std::string> arrows{"↑", "↓"};
    if (layout == SwitcherLayout::grid) {
        arrows.insert(arrows.end(), {"←", "→"});
    }
    return {
        {{keyCombination(texts.modifierKey(trigger), texts.tabKey, texts)}, "next"},
        {std::move(arrows), "navigate"},
        {{std::string(texts.returnKey)}, "switch"},
        {{keyCombination(texts.commandKeyDuringSession(trigger), "D", texts)}, "pin"},
        {{std::string(texts.escapeKey)}, "cancel"},
    };
}

EmptyState emptyState(std::string_view query) {
    if (query.empty()) {
        return {"macwindow", "No open windows", ""};
    }
    return {std::string(searchSymbol), "No matches for “" + std::string(query) + "”", "Press ⌫ to edit your search"};
}

bool showsFavouriteButton(bool isFavourite, bool isSelected) {
    return isFavourite || isSelected;
}

std::string_view favouriteSymbol(bool isFavourite) {
    return isFavourite ? "star.fill" : "star";
}

std::string_view favouriteHelp(bool isFavourite) {
    return isFavourite ? "Unpin this app" : "Pin this app to the top";
}

std::string_view favouriteLabel(bool isFavourite) {
    return isFavourite ? "Unpin app" : "Pin app";
}

std::string groupCountText(int count) {
    return std::to_string(count);
}

std::string groupAccessibilityLabel(int count) {
    return std::to_string(count) + " windows";
}

std::string_view layoutSymbol(SwitcherLayout layout) {
    switch (layout) {
        case SwitcherLayout::list:
            return "list.bullet";
        case SwitcherLayout::grouped:
            return "list.bullet.indent";
        case SwitcherLayout::grid:
            return "square.grid.3x2";
    }
    return "list.bullet";
}

}  // namespace WindowPresentation

}  // namespace ferrowyn
