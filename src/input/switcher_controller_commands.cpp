// What the keyboard and the panel's content ask of the controller.

#include <variant>

#include "input/switcher_controller.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "platform/main_loop.h"
#include "platform/panel.h"
#include "platform/pointer.h"
#include "services/accessibility_authorizer.h"
#include "services/preferences.h"

namespace ferrowyn {

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
    rearmWatchdog();
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
