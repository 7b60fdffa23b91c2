#include "input/switcher_controller.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <string_view>
#include <utility>
#include <variant>

#include "input/hot_key_monitor.h"
#include "input/window_activator.h"
#include "inventory/window_index.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/panel.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/workspace.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/preferences.h"

namespace ferrowyn {

bool PointerActivityGate::admitsHover(const Point& pointer) {
    if (anchor && std::hypot(pointer.x - anchor->x, pointer.y - anchor->y) > activityDistance) {
        anchor.reset();
    }
    return !anchor.has_value();
}

namespace {

constexpr std::string_view category = "ui";

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
      hotKeyMonitor_(parts.hotKeyMonitor),
      refit_(postTo(platform.mainLoop), [this] { refit(); }),
      watchdog_(platform.mainLoop, [this] { endIdleSession(); }),
      preparation_(platform,
                   {.windowIndex = windowIndex_,
                    .authorizer = authorizer_,
                    .favourites = favourites_,
                    .preferences = preferences_},
                   [this] { prepareNextSession(); }) {
    installContent(makeContent);
    subscribe();
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
    hotKeyMonitor_.state().openSession(preferences_.confirmOnModifierRelease.get());
    watchdog_.restart();
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
    watchdog_.stop();
    // Asked for first: from here on the tap may send the next trigger, and the session that it opens must find the
    // activation begun, or it would start from the window before. The activation's task runs after this one, when the
    // panel is hidden and neither covers the window nor takes its focus.
    if (chosen) {
        activator_->activate(*chosen);
    }
    hotKeyMonitor_.state().closeSession();
    panel_->hide();
    if (isVisible_) {
        isVisible_ = false;
        viewModel_->endSession();
        preparation_.requestAfterSession();
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

void SwitcherController::endIdleSession() {
    log_.write(LogLevel::standard, category, "Switcher idle watchdog fired; dismissing");
    dismiss();
}

void SwitcherController::setHoldMode(bool isPinned) {
    hotKeyMonitor_.state().setHoldModeActive(!isPinned && preferences_.confirmOnModifierRelease.get());
}

// What the controller shows, where, and what it follows to keep that right.

void SwitcherController::installContent(const SwitcherContentFactory& makeContent) {
    SwitcherContentCallbacks callbacks;
    callbacks.onActivate = life_.guard([this](const AppWindow& window) { activateClicked(window); });
    callbacks.onHover = life_.guard([this](int index) { hover(index); });
    callbacks.onToggleFavourite = life_.guard([this](const AppWindow& window) { toggleFavouriteOf(window); });
    callbacks.onRequestPermissions = life_.guard([this] { requestPermissions(); });
    callbacks.onAppearanceChanged = life_.guard([this] { preparation_.request(); });
    panel_->install(makeContent(*viewModel_, preferences_, std::move(callbacks)));
}

void SwitcherController::subscribe() {
    subscribeToShape();
    cancellables_.push_back(viewModel_->isPinned.subscribe([this](bool isPinned) { setHoldMode(isPinned); }));
    cancellables_.push_back(preferences_.modifier.published().subscribe(
        [this](SwitcherModifier modifier) { hotKeyMonitor_.state().setModifier(modifier); }));
    cancellables_.push_back(authorizer_.status().subscribe([this](AccessibilityStatus status) {
        if (status == AccessibilityStatus::notTrusted) {
            dismiss();
        }
    }));
}

void SwitcherController::subscribeToShape() {
    cancellables_.push_back(viewModel_->rows.subscribe([this](const auto&) {
        const auto shape = rowShape();
        if (lastShape_ != shape) {
            lastShape_ = shape;
            refit_.request();
        }
    }));
    cancellables_.push_back(preferences_.layout.published().subscribeToChanges(
        [this, last = preferences_.layout.get()](SwitcherLayout layout) mutable {
            if (layout != last) {
                last = layout;
                refit_.request();
            }
        }));
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

void SwitcherController::refit() {
    if (isVisible_) {
        panel_->refit(panel_geometry::refittedFrame(visibleFrame(), currentContentSize(), panel_->sessionTopY()));
    }
}

void SwitcherController::prepareNextSession() {
    // Without trust no session opens, and during one the panel shows that one; its end asks again.
    if (isVisible_ || authorizer_.status().get() != AccessibilityStatus::trusted) {
        return;
    }
    const auto rows = viewModel_->previewSession(false).rows;
    const auto groupCount = std::count_if(rows.begin(), rows.end(), [](const auto& row) { return row.startsGroup; });
    const Size size = contentSize(static_cast<int>(rows.size()), static_cast<int>(groupCount));
    panel_->prepare(panel_geometry::placement(visibleFrame(), size, panel_geometry::fullHeight(style())).frame);
}

// What the keyboard and the panel's content ask of the controller.

namespace {

/// Commands that move or filter the rows under the pointer, which from then on must not choose one by just being there.
bool drivesSelection(const SwitcherCommand& command) {
    return !(std::holds_alternative<command::Confirm>(command) || std::holds_alternative<command::Cancel>(command) ||
             std::holds_alternative<command::ToggleLayout>(command) ||
             std::holds_alternative<command::ToggleFavourite>(command) ||
             std::holds_alternative<command::ModifierReleased>(command));
}

}  // namespace

/// One operation a command, for a panel that is shown. Deliberate navigation other than Tab pins the session: the
/// modifier can then be let go without switching.
struct SwitcherController::CommandHandler {
    SwitcherController& controller;
    SwitcherViewModel& viewModel;

    void operator()(const command::Invoke& invoke) const { viewModel.move(invoke.reverse ? -1 : 1); }
    void operator()(const command::Move& move) const {
        viewModel.isPinned.set(true);
        viewModel.move(move.step);
    }
    void operator()(const command::MoveVertical& move) const {
        viewModel.isPinned.set(true);
        viewModel.moveVertical(move.step);
    }
    void operator()(const command::MoveToEdge& move) const {
        viewModel.isPinned.set(true);
        viewModel.moveToEdge(move.first);
    }
    void operator()(const command::SelectIndex& select) const {
        if (viewModel.selectIndex(select.ordinal)) {
            controller.confirm();
        }
    }
    void operator()(const command::InsertText& insert) const { viewModel.insertText(insert.text); }
    void operator()(const command::DeleteBackward&) const { viewModel.deleteBackward(); }
    void operator()(const command::ClearQuery&) const { viewModel.clearQuery(); }
    void operator()(const command::Confirm&) const { controller.confirm(); }
    void operator()(const command::Cancel&) const { controller.dismiss(); }
    void operator()(const command::ToggleLayout&) const {
        viewModel.isPinned.set(true);
        controller.cycleLayout();
    }
    void operator()(const command::ToggleFavourite&) const {
        viewModel.isPinned.set(true);
        controller.toggleFavouriteOfSelection();
    }
    void operator()(const command::ModifierReleased&) const {
        if (!viewModel.isPinned.get() && controller.preferences_.confirmOnModifierRelease.get()) {
            controller.confirm();
        }
    }
};

void SwitcherController::handle(const SwitcherCommand& command) {
    if (isVisible_) {
        watchdog_.restart();
    }
    if (drivesSelection(command)) {
        armPointerGate();
    }
    if (isVisible_) {
        std::visit(CommandHandler{*this, *viewModel_}, command);
    } else if (const auto* const invoke = std::get_if<command::Invoke>(&command)) {
        show(invoke->reverse);
    } else if (std::holds_alternative<command::Cancel>(command)) {
        dismiss();
    }
}

void SwitcherController::activateClicked(const AppWindow& window) {
    // A copy: the row, and with it the argument, may go with the session.
    close(std::optional(window));
}

void SwitcherController::hover(int index) {
    if (!pointer_.admitsHover(pointerDevice_.location())) {
        return;
    }
    if (index >= 0 && static_cast<std::size_t>(index) < viewModel_->rows.get().size()) {
        viewModel_->selectedIndex.set(index);
    }
}

void SwitcherController::toggleFavouriteOf(const AppWindow& window) {
    viewModel_->select(window.id);
    viewModel_->isPinned.set(true);
    toggleFavouriteOfSelection();
}

void SwitcherController::requestPermissions() {
    dismiss();
    authorizer_.openAccessibilitySettings();
}

}  // namespace ferrowyn
