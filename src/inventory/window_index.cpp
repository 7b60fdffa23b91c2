#include "inventory/window_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <unordered_set>
#include <utility>

#include "inventory/recency_tracker.h"
#include "inventory/window_observation_center.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/window_inventory.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "windows";

std::unordered_set<WindowId> idsOf(const std::vector<AppWindow>& windows) {
    std::unordered_set<WindowId> ids;
    for (const AppWindow& window : windows) {
        ids.insert(window.id);
    }
    return ids;
}

/// Whether two lists that are equal otherwise differ in the dialogs that block their windows.
bool differInDialogs(const std::vector<AppWindow>& a, const std::vector<AppWindow>& b) {
    return !std::ranges::equal(a, b, {}, &AppWindow::blockedBy, &AppWindow::blockedBy);
}

}  // namespace

WindowIndex::WindowIndex(const Platform& platform)
    : WindowIndex(platform, std::make_unique<RecencyTracker>([&workspace = platform.workspace] {
                      return workspace.frontmostPid();
                  }),
                  std::make_unique<WindowObservationCenter>(platform, WindowFilter(platform.application.ownPid()))) {}

WindowIndex::WindowIndex(const Platform& platform, std::unique_ptr<RecencyTracker> recency,
                         std::unique_ptr<WindowObservationCenter> observation)
    : mainLoop_(platform.mainLoop),
      backgroundWork_(platform.backgroundWork),
      log_(platform.log),
      windowInventory_(platform.windowInventory),
      enumerator_(WindowFilter(platform.application.ownPid()), platform.windowInventory, platform.backgroundWork,
                  platform.log),
      recency_(std::move(recency)),
      observation_(std::move(observation)) {}

WindowIndex::~WindowIndex() = default;

void WindowIndex::start() {
    assert(mainLoop_.isMainThread());
    if (isStarted_) {
        return;
    }
    isStarted_ = true;
    changes_ = observation_->changes().subscribe([this](const WindowChange& change) { handle(change); });
    observation_->start();
    mainLoop_.post(life_.guard([this, generation = generation_] {
        if (generation == generation_) {
            refresh();
        }
    }));
}

void WindowIndex::stop() {
    assert(mainLoop_.isMainThread());
    if (!isStarted_) {
        return;
    }
    isStarted_ = false;
    ++generation_;
    needsAnotherPass_ = false;
    observation_->stop();
    changes_.reset();
    coalescedRefresh_.reset();
    windows_.set({});
}

void WindowIndex::scheduleRefresh() {
    assert(mainLoop_.isMainThread());
    coalescedRefresh_ = mainLoop_.after(coalescingInterval, [this] { refresh(); });
}

void WindowIndex::refresh() {
    assert(mainLoop_.isMainThread());
    if (isEnumerating_) {
        needsAnotherPass_ = true;
        return;
    }
    isEnumerating_ = true;
    beginPass();
}

void WindowIndex::noteActivated(WindowId id) {
    assert(mainLoop_.isMainThread());
    use(id);
    // The dialog that blocks the window got the keyboard.
    const auto& windows = windows_.get();
    const auto activated = std::ranges::find(windows, id, &AppWindow::id);
    const auto dialog = activated != windows.end() ? activated->blockedBy : std::nullopt;
    if (dialog && std::ranges::find(windows, dialog->id, &AppWindow::id) != windows.end()) {
        use(dialog->id);
    }
}

void WindowIndex::use(WindowId id) {
    recency_->touch(id);
    moveToFront(id);
}

WindowId WindowIndex::listedWindowFor(WindowId focused) const {
    const auto& windows = windows_.get();
    if (std::ranges::find(windows, focused, &AppWindow::id) != windows.end()) {
        return focused;
    }
    const auto blocked = std::ranges::find(windows, focused, &AppWindow::inputWindowId);
    return blocked != windows.end() ? blocked->id : focused;
}

void WindowIndex::moveToFront(WindowId id) {
    std::vector<AppWindow> windows = windows_.get();
    const auto activated = std::ranges::find(windows, id, &AppWindow::id);
    if (activated == windows.end() || activated == windows.begin()) {
        return;
    }
    std::rotate(windows.begin(), activated, std::next(activated));
    publish(std::move(windows));
}

void WindowIndex::publish(std::vector<AppWindow> windows) {
    log_.write(
        LogLevel::debug, category,
        fmt::format("Published {} window(s), first {}", windows.size(), windows.empty() ? 0 : windows.front().id));
    windows_.set(std::move(windows));
}

void WindowIndex::handle(const WindowChange& change) {
    if (change.kind == WindowChange::Kind::focus) {
        const auto id = windowInventory_.focusedWindowNumber(change.pid, focusedWindowTimeout);
        if (id && *id != 0) {
            // The list changes at once, because the user may press the trigger again before the coalesced refresh, and
            // that session must start from the window that has the focus now.
            use(listedWindowFor(*id));
        }
    }
    if (!isStarted_) {
        return;  // a subscriber stopped the index
    }
    scheduleRefresh();
}

void WindowIndex::beginPass() {
    needsAnotherPass_ = false;
    rankAtPassBegin_ = recency_->latestRank();
    const auto finish = life_.guard([this, generation = generation_](WindowEnumerator::Snapshot snapshot) {
        finishPass(generation, std::move(snapshot));
    });
    backgroundWork_.run([enumerator = enumerator_, &mainLoop = mainLoop_, finish] {
        mainLoop.post([finish, snapshot = enumerator.snapshot()]() mutable { finish(std::move(snapshot)); });
    });
}

void WindowIndex::finishPass(std::uint64_t generation, WindowEnumerator::Snapshot snapshot) {
    if (generation == generation_) {
        apply(std::move(snapshot));
    }
    if (needsAnotherPass_) {
        beginPass();
    } else {
        isEnumerating_ = false;
    }
}

void WindowIndex::apply(WindowEnumerator::Snapshot snapshot) {
    std::vector<AppWindow> windows = carryingOver(std::move(snapshot));
    recency_->seedIfEmpty(windows);
    const auto ids = idsOf(windows);
    if (ids.size() < recency_->count()) {
        // The snapshot may not have a window that was focused after the pass began.
        recency_->retainOnly(ids, rankAtPassBegin_);
    }
    std::ranges::stable_sort(windows,
                             [this](const AppWindow& a, const AppWindow& b) { return recency_->precedes(a, b); });

    const auto generation = generation_;
    if (windows != windows_.get() || differInDialogs(windows, windows_.get())) {
        publish(windows);
    }
    if (generation != generation_) {
        return;  // a subscriber stopped the index
    }
    lastRefresh_.set(mainLoop_.now());
    observation_->synchronize(windows);
}

std::vector<AppWindow> WindowIndex::carryingOver(WindowEnumerator::Snapshot snapshot) const {
    std::vector<AppWindow> windows = std::move(snapshot.windows);
    const auto reported = idsOf(windows);
    std::size_t carried = 0;
    for (const AppWindow& known : windows_.get()) {
        if (!reported.contains(known.id) && snapshot.liveWindowIDs.contains(known.id)) {
            windows.push_back(known);
            windows.back().isOnActiveSpace = snapshot.onScreenWindowIDs.contains(known.id);
            if (known.blockedBy && !snapshot.liveWindowIDs.contains(known.blockedBy->id)) {
                windows.back().blockedBy.reset();
            }
            ++carried;
        }
    }
    if (carried > 0) {
        log_.write(LogLevel::debug, category,
                   fmt::format("Carrying over {} window(s) Accessibility did not report", carried));
    }
    return windows;
}

}  // namespace ferrowyn
