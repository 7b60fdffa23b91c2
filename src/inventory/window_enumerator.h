#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "inventory/window_filter.h"
#include "platform/main_loop.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

class Log;

/// Takes one snapshot of all switchable windows: what the window server lists, matched with what each application says
/// about its own windows. A value, so that each snapshot works on a copy; what it refers to outlives every copy.
class WindowEnumerator {
public:
    struct Snapshot {
        /// The windows found through Accessibility, front-most first, each id once.
        std::vector<AppWindow> windows;
        /// Every normal window that the server lists for an admitted application, reported by it or not.
        std::unordered_set<WindowId> liveWindowIDs;
        /// Those of them on the active Space.
        std::unordered_set<WindowId> onScreenWindowIDs;
    };

    WindowEnumerator(WindowFilter filter, const WindowInventory& inventory, BackgroundWork& backgroundWork, Log& log);

    /// Waits for the system and for every application. A worker thread, never the main thread.
    [[nodiscard]] Snapshot snapshot() const;

    /// How long one application may take over one request.
    static constexpr Seconds messagingTimeout{0.35};
    /// How far, in points, a window's own frame and the server's may differ in each of x, y, width and height for the
    /// two to be the same window.
    static constexpr double geometryTolerance = 2.0;

private:
    using MetadataTable = std::unordered_map<WindowId, WindowMetadata>;
    /// What the collection of one application works with, and which ids it has used up.
    struct Collection;

    [[nodiscard]] MetadataTable metadataTable(const InventoryReading& reading) const;
    [[nodiscard]] std::vector<RunningApplication> admittedApplications(const InventoryReading& reading) const;
    [[nodiscard]] std::vector<AppWindow> collectAll(const InventoryReading& reading, const MetadataTable& table,
                                                    const std::vector<RunningApplication>& applications) const;
    [[nodiscard]] std::vector<AppWindow> collect(const InventoryReading& reading, const MetadataTable& table,
                                                 const RunningApplication& application) const;
    [[nodiscard]] std::optional<AppWindow> appWindow(Collection& collection, const AccessibleWindow& window) const;
    [[nodiscard]] std::optional<WindowId> identify(Collection& collection, const AccessibleWindow& window,
                                                   const std::optional<Rect>& frame) const;
    void reportMissingLookupOnce() const;

    WindowFilter filter_;
    const WindowInventory* inventory_;
    BackgroundWork* backgroundWork_;
    Log* log_;
    /// Shared by all copies: the system lacks the lookup or has it, and one line in the log says so.
    std::shared_ptr<std::atomic_flag> hasReportedMissingLookup_ = std::make_shared<std::atomic_flag>();
};

}  // namespace ferrowyn
