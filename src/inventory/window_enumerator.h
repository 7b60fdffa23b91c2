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

/// Takes a snapshot of all switchable windows: the list of the window server, matched with what each application
/// reports about its windows. A value: each snapshot works on a copy, on a worker thread. The referenced objects
/// outlive every copy.
class WindowEnumerator {
public:
    struct Snapshot {
        /// The windows found through Accessibility, front-most first, each id once.
        std::vector<AppWindow> windows;
        /// Every normal window that the server lists for an admitted application, also when the application does not
        /// report it.
        std::unordered_set<WindowId> liveWindowIDs;
        /// Those of them on the active Space.
        std::unordered_set<WindowId> onScreenWindowIDs;
    };

    WindowEnumerator(WindowFilter filter, const WindowInventory& inventory, BackgroundWork& backgroundWork, Log& log);

    /// Waits for the system and for every application. Worker threads only.
    [[nodiscard]] Snapshot snapshot() const;

    /// How long one application may take over one request.
    static constexpr Seconds messagingTimeout{0.35};
    /// In points. A window of an application and a window of the server are the same when their frames differ by at
    /// most this in each of x, y, width and height.
    static constexpr double geometryTolerance = 2.0;

private:
    using MetadataTable = std::unordered_map<WindowId, WindowMetadata>;
    /// The input for collecting the windows of one application, and the ids that are already assigned.
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
    /// Shared by all copies, so that the log gets only one line about a missing lookup.
    std::shared_ptr<std::atomic_flag> hasReportedMissingLookup_ = std::make_shared<std::atomic_flag>();
};

}  // namespace ferrowyn
