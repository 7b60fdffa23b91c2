#include "input/switcher_controller.h"

#include <cassert>
#include <string_view>
#include <utility>
#include <variant>

#include "input/hot_key_monitor.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "inventory/window_index.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/panel.h"
#include "platform/platform.h"
#include "platform/pointer.h"
#include "platform/screens.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/preferences.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "ui";
/// Longer than anybody looks at a list; it only guards against a modifier release that got lost.
constexpr Seconds watchdogInterval{30.0};
/// Drawing the next first frame would get in the way of the activation that a session ends with, and would show the
/// order before it: the new order asks for it anyway, and this only after a session that has changed nothing.
constexpr Seconds preparationDelay{0.1};

}  // namespace

SwitcherController::SwitcherController(const Platform& platform, Parts parts, const SwitcherContentFactory& makeContent)
    : mainLoop_(platform.mainLoop),
      log_(platform.log),
      pointerDevice_(platform.pointer),
      screens_(platform.screens),
      panel_(std::move(parts.panel)),
      viewModel_(std::move(parts.viewModel)),
      preferences_(parts.preferences),
      favourites_(parts.favourites),
      windowIndex_(parts.windowIndex),
      activator_(std::move(parts.activator)),
      authorizer_(parts.authorizer),
      hotKeyMonitor_(parts.hotKeyMonitor) {
    installContent(makeContent);
    subscribe(platform);
    clickMonitor_ = platform.pointer.observeClicksElsewhere([this] {
        if (isVisible_) {
            dismiss();
        }
    });
}

SwitcherController::~SwitcherController() = default;

void SwitcherController::show(bool reverse) {
    assert(mainLoop_.isMainThread());
    if (authorizer_.status().get() != AccessibilityStatus::trusted) {
        authorizer_.requestTrust();
        return;
    }
    viewModel_->beginSession(reverse);
    armPointerGate();
    panel_->show(panel_geometry::placement(visibleFrame(), currentContentSize(), panel_geometry::fullHeight(style())));
    isVisible_ = true;
    auto& state = hotKeyMonitor_.state();
    state.setSwitcherVisible(true);
    state.setHoldModeActive(preferences_.confirmOnModifierRelease.get());
    // Only now: what the tap held back for this session is classified with both flags.
    state.passSessionOn();
    rearmWatchdog();
    windowIndex_.scheduleRefresh();
}

void SwitcherController::showFromMenu() {
    // No key has just told where it is, and the panel comes to the screen that it is on.
    pointerDevice_.refresh();
    show(false);
    viewModel_->isPinned.set(true);
    if (!viewModel_->rows.get().empty()) {
        viewModel_->selectedIndex.set(0);
    }
}

void SwitcherController::dismiss() {
    close(std::nullopt);
}

void SwitcherController::close(const std::optional<AppWindow>& chosen) {
    assert(mainLoop_.isMainThread());
    watchdogTimer_.reset();
    // Asked for first: from here on the tap may send the next trigger, and the session that it opens must find the
    // activation begun, or it would start from the window before. The activation's task runs after this one, when the
    // panel is hidden and neither covers the window nor takes its focus.
    if (chosen) {
        activator_->activate(*chosen);
    }
    auto& state = hotKeyMonitor_.state();
    state.setSwitcherVisible(false);
    state.setHoldModeActive(false);
    panel_->hide();
    state.passSessionOn();
    if (isVisible_) {
        isVisible_ = false;
        viewModel_->endSession();
        delayedPreparation_ = mainLoop_.after(preparationDelay, [this] { schedulePreparation(); });
    }
}

void SwitcherController::confirm() {
    close(viewModel_->selectedWindow());
}

void SwitcherController::noteActivated(const AppWindow& window) {
    windowIndex_.noteActivated(window.id);
}

void SwitcherController::cycleLayout() {
    preferences_.layout.set(nextLayout(preferences_.layout.get()));
}

void SwitcherController::toggleFavouriteOfSelection() {
    if (const auto window = viewModel_->selectedWindow()) {
        favourites_.toggle(*window);
        viewModel_->rebuildRows(true);
    }
}

void SwitcherController::armPointerGate() {
    pointer_.arm(pointerDevice_.location());
}

void SwitcherController::rearmWatchdog() {
    watchdogTimer_.reset();
    if (isVisible_) {
        watchdogTimer_ = mainLoop_.after(watchdogInterval, [this] { watchdogFired(); });
    }
}

void SwitcherController::watchdogFired() {
    if (isVisible_) {
        log_.write(LogLevel::standard, category, "Switcher idle watchdog fired; dismissing");
        dismiss();
    }
}

void SwitcherController::setHoldMode(bool isPinned) {
    hotKeyMonitor_.state().setHoldModeActive(!isPinned && preferences_.confirmOnModifierRelease.get());
}

}  // namespace ferrowyn
