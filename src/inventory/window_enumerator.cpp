#include "inventory/window_enumerator.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <mutex>
#include <tuple>
#include <utility>

#include "platform/log.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "windows";

std::optional<Rect> accessibilityFrame(const AccessibleWindow& window) {
    if (!window.position || !window.size) {
        return std::nullopt;
    }
    return Rect{window.position->x, window.position->y, window.size->width, window.size->height};
}

bool isClose(const Rect& a, const Rect& b) {
    constexpr double tolerance = WindowEnumerator::geometryTolerance;
    return std::abs(a.x - b.x) <= tolerance && std::abs(a.y - b.y) <= tolerance &&
           std::abs(a.width - b.width) <= tolerance && std::abs(a.height - b.height) <= tolerance;
}

/// The windows of all applications, gathered from several worker threads.
class Collector {
public:
    void append(std::vector<AppWindow> windows) {
        const std::scoped_lock lock(lock_);
        storage_.insert(storage_.end(), std::make_move_iterator(windows.begin()),
                        std::make_move_iterator(windows.end()));
    }

    [[nodiscard]] std::vector<AppWindow> take() {
        const std::scoped_lock lock(lock_);
        return std::exchange(storage_, {});
    }

private:
    std::mutex lock_;
    std::vector<AppWindow> storage_;
};

/// Sorts stably. Of several windows with the same id only the first stays, because an id is one row.
void sortFrontToBack(std::vector<AppWindow>& windows) {
    std::ranges::stable_sort(windows, [](const AppWindow& a, const AppWindow& b) {
        return std::tie(a.zOrder, a.appName, a.id) < std::tie(b.zOrder, b.appName, b.id);
    });
    std::unordered_set<WindowId> seen;
    std::erase_if(windows, [&seen](const AppWindow& window) { return !seen.insert(window.id).second; });
}

}  // namespace

struct WindowEnumerator::Collection {
    const InventoryReading& reading;
    const MetadataTable& table;
    const RunningApplication& application;
    std::string appName;
    std::optional<AXElementRef> focusedWindow;
    std::unordered_set<WindowId> identified;

    [[nodiscard]] std::optional<WindowId> matchByGeometry(const Rect& frame) const;
};

WindowEnumerator::WindowEnumerator(WindowFilter filter, const WindowInventory& inventory,
                                   BackgroundWork& backgroundWork, Log& log)
    : filter_(filter), inventory_(&inventory), backgroundWork_(&backgroundWork), log_(&log) {}

WindowEnumerator::Snapshot WindowEnumerator::snapshot() const {
    const auto reading = inventory_->beginReading();
    const MetadataTable table = metadataTable(*reading);
    const auto applications = admittedApplications(*reading);

    Snapshot snapshot;
    snapshot.windows = collectAll(*reading, table, applications);
    sortFrontToBack(snapshot.windows);

    std::unordered_set<Pid> admittedPids;
    for (const RunningApplication& application : applications) {
        admittedPids.insert(application.pid);
    }
    for (const auto& [id, metadata] : table) {
        if (filter_.isApplicationWindow(metadata) && admittedPids.contains(metadata.pid)) {
            snapshot.liveWindowIDs.insert(id);
            if (metadata.isOnActiveSpace) {
                snapshot.onScreenWindowIDs.insert(id);
            }
        }
    }
    return snapshot;
}

WindowEnumerator::MetadataTable WindowEnumerator::metadataTable(const InventoryReading& reading) const {
    const auto list = reading.windowList();
    if (!list) {
        log_->write(LogLevel::error, category, "CGWindowListCopyWindowInfo returned nil");
        return {};
    }
    const auto onScreenIds = reading.onScreenWindowIds();
    MetadataTable table;
    table.reserve(list->size());
    std::int64_t position = 0;
    for (const WindowServerEntry& entry : *list) {
        const std::int64_t zOrder = position++;
        if (!entry.id) {
            continue;
        }
        const bool isOnActiveSpace = onScreenIds.contains(*entry.id);
        table.insert_or_assign(*entry.id, WindowMetadata{
                                              .zOrder = zOrder,
                                              .ownerName = entry.ownerName.value_or(""),
                                              .isOnScreen = entry.isOnScreen.value_or(isOnActiveSpace),
                                              .isOnActiveSpace = isOnActiveSpace,
                                              .bounds = entry.bounds.value_or(Rect{}),
                                              .alpha = entry.alpha.value_or(1.0),
                                              .layer = entry.layer.value_or(0),
                                              .pid = entry.ownerPid.value_or(0),
                                          });
    }
    return table;
}

std::vector<RunningApplication> WindowEnumerator::admittedApplications(const InventoryReading& reading) const {
    auto applications = reading.runningApplications();
    std::erase_if(applications, [this](const RunningApplication& each) { return !filter_.isSwitchable(each); });
    return applications;
}

std::vector<AppWindow> WindowEnumerator::collectAll(const InventoryReading& reading, const MetadataTable& table,
                                                    const std::vector<RunningApplication>& applications) const {
    Collector collector;
    backgroundWork_->concurrentPerform(applications.size(), [&](std::size_t index) {
        collector.append(collect(reading, table, applications[index]));
    });
    return collector.take();
}

std::vector<AppWindow> WindowEnumerator::collect(const InventoryReading& reading, const MetadataTable& table,
                                                 const RunningApplication& application) const {
    if (application.pid <= 0) {
        return {};
    }
    const auto answer = reading.windowsOf(application.pid, messagingTimeout);
    if (!answer || answer->windows.empty()) {
        return {};
    }
    Collection collection{.reading = reading,
                          .table = table,
                          .application = application,
                          .appName = application.localizedName.value_or("Unknown"),
                          .focusedWindow = answer->focusedWindow,
                          .identified = {}};
    std::vector<AppWindow> windows;
    for (const AccessibleWindow& accessible : answer->windows) {
        if (auto window = appWindow(collection, accessible)) {
            windows.push_back(std::move(*window));
        }
    }
    return windows;
}

std::optional<AppWindow> WindowEnumerator::appWindow(Collection& collection, const AccessibleWindow& window) const {
    std::optional<Rect> frame = accessibilityFrame(window);
    const auto id = identify(collection, window, frame);
    if (!id) {
        log_->write(LogLevel::debug, category, fmt::format("Skipping unidentifiable window in {}", collection.appName));
        return std::nullopt;
    }
    const auto listed = collection.table.find(*id);
    const WindowMetadata* metadata = listed != collection.table.end() ? &listed->second : nullptr;
    if (!frame || frame->isEmpty()) {
        frame = metadata != nullptr ? std::optional(metadata->bounds) : std::nullopt;
    }
    const std::string title = window.title.value_or("");
    const bool isMinimized = window.isMinimized.value_or(false);
    if (!filter_.isSwitchable(WindowFilter::Candidate{window.subrole, title, isMinimized, frame, metadata})) {
        return std::nullopt;
    }
    return AppWindow{
        .id = *id,
        .axElement = window.element,
        .pid = collection.application.pid,
        .bundleIdentifier = collection.application.bundleIdentifier,
        .appName = collection.appName,
        .title = title,
        .isMinimized = isMinimized,
        .isFullScreen = window.isFullScreen.value_or(false),
        // A minimised window counts as being on the active Space, because restoring it brings it there.
        .isOnActiveSpace = isMinimized || (metadata != nullptr && metadata->isOnActiveSpace),
        .isAppFocusedWindow = collection.focusedWindow == window.element,
        .frame = frame.value_or(Rect{}),
        .zOrder = metadata != nullptr ? metadata->zOrder : unlistedZOrder,
        .bundleURL = collection.application.bundleURL,
        .blockedBy = window.blockedBy,
    };
}

std::optional<WindowId> WindowEnumerator::identify(Collection& collection, const AccessibleWindow& window,
                                                   const std::optional<Rect>& frame) const {
    std::optional<WindowId> id;
    if (collection.reading.hasWindowNumberLookup()) {
        id = window.windowNumber;
    } else {
        reportMissingLookupOnce();
    }
    if (!id || *id == 0) {
        id = frame && !frame->isEmpty() ? collection.matchByGeometry(*frame) : std::nullopt;
    }
    if (id) {
        collection.identified.insert(*id);
    }
    return id;
}

std::optional<WindowId> WindowEnumerator::Collection::matchByGeometry(const Rect& frame) const {
    // Windows that lie exactly on top of each other all match. An id that no other window of the application has yet is
    // preferred, front-most first, so that two maximised windows do not become one.
    std::optional<std::tuple<bool, std::int64_t, WindowId>> best;
    for (const auto& [id, metadata] : table) {
        if (metadata.pid == application.pid && isClose(metadata.bounds, frame)) {
            const std::tuple candidate(identified.contains(id), metadata.zOrder, id);
            best = best ? std::min(*best, candidate) : candidate;
        }
    }
    return best ? std::optional(std::get<WindowId>(*best)) : std::nullopt;
}

void WindowEnumerator::reportMissingLookupOnce() const {
    if (!hasReportedMissingLookup_->test_and_set()) {
        log_->write(LogLevel::error, category, "_AXUIElementGetWindow unavailable; falling back to geometry matching");
    }
}

}  // namespace ferrowyn
