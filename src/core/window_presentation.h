#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"
#include "core/switcher_options.h"
#include "core/texts.h"

namespace ferrowyn {

/// What a session needs to know about the favourites. FavouritesStore implements it. Main thread.
class FavouriteApplications {
public:
    virtual ~FavouriteApplications() = default;

    /// Oldest favourite first; the same identifier may stand in it twice.
    [[nodiscard]] virtual const Published<std::vector<std::string>>& bundleIdentifiers() const = 0;
    /// The windows of favourite applications first, then the others; the order within each part stays. None is null.
    [[nodiscard]] virtual std::vector<const AppWindow*> ordered(std::vector<const AppWindow*> windows) const = 0;
};

/// The small display decisions that rows and cards share. Pure functions; any thread.
namespace WindowPresentation {

enum class Tint { orange, blue, purple };

/// A window's state, at most one: the first of minimised, full screen, on another Space.
struct Badge {
    std::string text;
    /// The name of a symbol image.
    std::string symbol;
    Tint tint = Tint::orange;
    friend bool operator==(const Badge&, const Badge&) = default;
};

/// Keys, each drawn as one key cap, and what they do.
struct ShortcutHint {
    std::vector<std::string> keys;
    std::string label;
    friend bool operator==(const ShortcutHint&, const ShortcutHint&) = default;
};

/// What the panel's body says when it has no rows to show.
struct EmptyState {
    std::string symbol;
    std::string title;
    /// Empty when there is nothing to add.
    std::string detail;
    friend bool operator==(const EmptyState&, const EmptyState&) = default;
};

[[nodiscard]] std::optional<Badge> badge(const AppWindow& window, const TextTable& texts);
[[nodiscard]] std::vector<ShortcutHint> footerHints(SwitcherModifier trigger, SwitcherLayout layout,
                                                    const TextTable& texts);
/// Shown beside the hints while releasing the trigger's modifier does not switch.
inline constexpr std::string_view stayingOpenNote = "stays open";
[[nodiscard]] EmptyState emptyState(std::string_view query);

inline constexpr std::string_view searchSymbol = "magnifyingglass";
inline constexpr std::string_view searchPlaceholder = "Search windows by app or title";
inline constexpr std::string_view permissionSymbol = "lock.shield.fill";
inline constexpr std::string_view favouriteAccessibilityText = "Favourite";

/// The favourite button is drawn only for a favourite application and on the selected row.
[[nodiscard]] bool showsFavouriteButton(bool isFavourite, bool isSelected);
/// "star.fill" or "star".
[[nodiscard]] std::string_view favouriteSymbol(bool isFavourite);
/// "Unpin this app" or "Pin this app to the top".
[[nodiscard]] std::string_view favouriteHelp(bool isFavourite);
/// "Unpin app" or "Pin app".
[[nodiscard]] std::string_view favouriteLabel(bool isFavourite);
/// The header's count as it is drawn, and as it is read aloud ("3 windows").
[[nodiscard]] std::string groupCountText(int count);
[[nodiscard]] std::string groupAccessibilityLabel(int count);
/// "list.bullet", "list.bullet.indent" or "square.grid.3x2".
[[nodiscard]] std::string_view layoutSymbol(SwitcherLayout layout);

}  // namespace WindowPresentation

}  // namespace ferrowyn
