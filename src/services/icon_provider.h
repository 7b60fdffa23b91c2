#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "core/app_window.h"
#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

class IconImage;
class IconSource;
class Workspace;

/// An application icon with the size, in points, at which it is shown.
struct Icon {
    std::shared_ptr<const IconImage> image;
    Size size{32, 32};
};

/// Application icons, cached per application until it quits, or until it gives itself another one. Main thread.
class IconProvider {
public:
    IconProvider(IconSource& source, Workspace& workspace);

    /// Never fails: a generic application icon is the last resort.
    [[nodiscard]] const Icon& icon(const AppWindow& window);
    /// Whether the icon is there without loading anything.
    [[nodiscard]] bool holds(const AppWindow& window) const;
    /// Forgets every icon.
    void removeAll();

    /// An icon was forgotten because the process with this id gives itself another one.
    [[nodiscard]] const Subject<Pid>& replacements() const { return replacements_; }

    /// The bundle identifier, else "pid:" and the process id.
    [[nodiscard]] static std::string cacheKey(const std::optional<std::string>& bundleIdentifier, Pid pid);

private:
    struct Entry {
        Icon icon;
        /// The process that the icon stands for; none when it is the installed application's own.
        std::optional<Pid> process;
    };

    [[nodiscard]] Entry load(const AppWindow& window);
    void forgetIconOf(Pid process);

    IconSource& source_;
    std::unordered_map<std::string, Entry> cache_;
    Subject<Pid> replacements_;
    Subscription terminationObserver_;
    Subscription processIconObserver_;
};

}  // namespace ferrowyn
