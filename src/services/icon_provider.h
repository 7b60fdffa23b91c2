#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "core/app_window.h"
#include "core/geometry.h"
#include "core/subscription.h"

namespace ferrowyn {

class IconImage;
class IconSource;
class Workspace;

/// An application icon with the size, in points, at which it is shown.
struct Icon {
    std::shared_ptr<const IconImage> image;
    Size size{32, 32};
};

/// Application icons, cached per application until it quits. Main thread.
class IconProvider {
public:
    IconProvider(IconSource& source, Workspace& workspace);

    /// Never fails: a generic application icon is the last resort.
    [[nodiscard]] const Icon& icon(const AppWindow& window);
    /// Whether the icon is there without loading anything.
    [[nodiscard]] bool holds(const AppWindow& window) const;
    /// Forgets every icon.
    void removeAll();

    /// The bundle identifier, else "pid:" and the process id.
    [[nodiscard]] static std::string cacheKey(const std::optional<std::string>& bundleIdentifier, Pid pid);

private:
    IconSource& source_;
    std::unordered_map<std::string, Icon> cache_;
    Subscription terminationObserver_;
};

}  // namespace ferrowyn
