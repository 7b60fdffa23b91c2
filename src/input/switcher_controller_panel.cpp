// What the controller shows, where, and what it follows to keep that right.

#include <algorithm>

#include "input/hot_key_monitor.h"
#include "input/switcher_controller.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "inventory/window_index.h"
#include "platform/main_loop.h"
#include "platform/panel.h"
#include "platform/platform.h"
#include "platform/pointer.h"
#include "platform/screens.h"
#include "platform/workspace.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/preferences.h"

namespace ferrowyn {

void SwitcherController::installContent(const SwitcherContentFactory& makeContent) {
    const std::weak_ptr<Self> weak = self_;
    SwitcherContentCallbacks callbacks;
    callbacks.onActivate = [weak](const AppWindow& window) {
        if (const auto self = weak.lock()) {
            self->controller.activateClicked(window);
        }
    };
    callbacks.onHover = [weak](int index) {
        if (const auto self = weak.lock()) {
            self->controller.hover(index);
        }
    };
    callbacks.onToggleFavourite = [weak](const AppWindow& window) {
        if (const auto self = weak.lock()) {
            self->controller.toggleFavouriteOf(window);
        }
    };
    callbacks.onRequestPermissions = [weak] {
        if (const auto self = weak.lock()) {
            self->controller.requestPermissions();
        }
    };
    callbacks.onAppearanceChanged = [weak] {
        if (const auto self = weak.lock()) {
            self->controller.schedulePreparation();
        }
    };
    panel_->install(makeContent(*viewModel_, preferences_, std::move(callbacks)));
}

void SwitcherController::subscribe(const Platform& platform) {
    subscribeToShape();
    cancellables_.push_back(viewModel_->isPinned.subscribe([this](bool isPinned) { setHoldMode(isPinned); }));
    cancellables_.push_back(preferences_.modifier.published().subscribe(
        [this](SwitcherModifier modifier) { hotKeyMonitor_.state().setModifier(modifier); }));
    cancellables_.push_back(authorizer_.status().subscribe([this](AccessibilityStatus status) {
        if (status == AccessibilityStatus::notTrusted) {
            dismiss();
        }
    }));
    subscribeToWhatNextSessionShows(platform);
}

void SwitcherController::subscribeToShape() {
    cancellables_.push_back(viewModel_->rows.subscribe([this](const auto&) {
        const auto shape = rowShape();
        if (lastShape_ != shape) {
            lastShape_ = shape;
            scheduleRefit();
        }
    }));
    cancellables_.push_back(preferences_.layout.published().subscribeToChanges(
        [this, last = preferences_.layout.get()](SwitcherLayout layout) mutable {
            if (layout != last) {
                last = layout;
                scheduleRefit();
            }
        }));
}

void SwitcherController::subscribeToWhatNextSessionShows(const Platform& platform) {
    const auto follow = [this](const auto& published) {
        cancellables_.push_back(published.subscribeToChanges([this](const auto&) { schedulePreparation(); }));
    };
    follow(windowIndex_.windows());
    follow(authorizer_.status());
    follow(favourites_.bundleIdentifiers());
    follow(preferences_.includeMinimized.published());
    follow(preferences_.includeOtherSpaces.published());
    follow(preferences_.showShortcutHints.published());
    follow(preferences_.maximumVisibleRows.published());
    follow(preferences_.layout.published());
    // The panel's footer names the trigger.
    follow(preferences_.modifier.published());
    follow(preferences_.showActiveAppWindowsFirst.published());
    follow(preferences_.favouritesFirst.published());
    cancellables_.push_back(platform.workspace.observe([this](const WorkspaceEvent& event) {
        // Which application is in front decides the order, the screens decide the place.
        if (event.kind == WorkspaceEvent::Kind::didActivate ||
            event.kind == WorkspaceEvent::Kind::screenParametersDidChange) {
            schedulePreparation();
        }
    }));
    // The desktop may say so before the screens' new extents are known, and says nothing of a dock that came or went.
    cancellables_.push_back(platform.screens.observe([this] { schedulePreparation(); }));
    schedulePreparation();
}

panel_geometry::Style SwitcherController::style() const {
    return {preferences_.layout.get(), preferences_.maximumVisibleRows.get(), preferences_.showShortcutHints.get()};
}

Size SwitcherController::contentSize(int rowCount, int groupCount) const {
    const auto style = this->style();
    const int shownRows = viewModel_->isAccessibilityTrusted.get() ? rowCount : 0;
    return {panel_geometry::contentWidth(style.layout), panel_geometry::contentHeight(style, shownRows, groupCount)};
}

Size SwitcherController::currentContentSize() const {
    const auto shape = rowShape();
    return contentSize(shape.rowCount, shape.groupCount);
}

Rect SwitcherController::visibleFrame() const {
    return panel_geometry::chooseScreen(screens_.all(), screens_.main(), pointerDevice_.location()).visibleFrame;
}

panel_geometry::RowShape SwitcherController::rowShape() const {
    return {preferences_.layout.get(), static_cast<int>(viewModel_->rows.get().size()), viewModel_->groupCount()};
}

void SwitcherController::scheduleRefit() {
    if (std::exchange(isRefitScheduled_, true)) {
        return;
    }
    mainLoop_.post([weak = std::weak_ptr<Self>(self_)] {
        if (const auto self = weak.lock()) {
            self->controller.isRefitScheduled_ = false;
            self->controller.refit();
        }
    });
}

void SwitcherController::refit() {
    if (isVisible_) {
        panel_->refit(panel_geometry::refittedFrame(visibleFrame(), currentContentSize(), panel_->sessionTopY()));
    }
}

void SwitcherController::schedulePreparation() {
    if (isVisible_ || std::exchange(isPreparationScheduled_, true)) {
        return;
    }
    mainLoop_.post([weak = std::weak_ptr<Self>(self_)] {
        if (const auto self = weak.lock()) {
            self->controller.isPreparationScheduled_ = false;
            self->controller.prepareNextSession();
        }
    });
}

void SwitcherController::prepareNextSession() {
    delayedPreparation_.reset();
    // Without trust no session opens, and during one the panel shows that one; its end asks again.
    if (isVisible_ || authorizer_.status().get() != AccessibilityStatus::trusted) {
        return;
    }
    const auto rows = viewModel_->previewSession(false).rows;
    const auto groupCount = std::count_if(rows.begin(), rows.end(), [](const auto& row) { return row.startsGroup; });
    const Size size = contentSize(static_cast<int>(rows.size()), static_cast<int>(groupCount));
    panel_->prepare(panel_geometry::placement(visibleFrame(), size, panel_geometry::fullHeight(style())).frame);
}

}  // namespace ferrowyn
