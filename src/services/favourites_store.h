#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/window_presentation.h"

namespace ferrowyn {

class UserDefaults;
class Workspace;

/// The user's favourite applications: a persistent list of bundle identifiers in the order they were added. Main
/// thread; AppServices owns it. The defaults store and the workspace outlive it.
class FavouritesStore final : public FavouriteApplications {
public:
    FavouritesStore(UserDefaults& defaults, const Workspace& workspace);

    [[nodiscard]] const Published<std::vector<std::string>>& bundleIdentifiers() const override {
        return bundleIdentifiers_;
    }
    [[nodiscard]] std::vector<const AppWindow*> ordered(std::vector<const AppWindow*> windows) const override;

    /// Adds the window's application at the end, or removes its first occurrence; a window without a bundle identifier
    /// changes nothing.
    void toggle(const AppWindow& window);
    /// Removes the first occurrence; an identifier that is not in the list changes and stores nothing.
    void remove(std::string_view bundleIdentifier);
    void removeAll();
    /// The installed application's name, else the identifier's last dotted component.
    [[nodiscard]] std::string displayName(std::string_view bundleIdentifier) const;

private:
    void save();

    Published<std::vector<std::string>> bundleIdentifiers_;
    UserDefaults& defaults_;
    const Workspace& workspace_;
};

}  // namespace ferrowyn
