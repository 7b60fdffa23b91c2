#pragma once

#include <string>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

/// What a session needs to know of the favourites; the store that keeps them implements it. Main thread.
class FavouriteApplications {
public:
    virtual ~FavouriteApplications() = default;

    /// Oldest favourite first; the same identifier may stand in it twice.
    [[nodiscard]] virtual const Published<std::vector<std::string>>& bundleIdentifiers() const = 0;
    /// The windows of favourite applications first, then the others, each part in its given order. None is null.
    [[nodiscard]] virtual std::vector<const AppWindow*> ordered(std::vector<const AppWindow*> windows) const = 0;
};

}  // namespace ferrowyn
