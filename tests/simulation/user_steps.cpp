// What the user does, and what the main loop does of itself.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

#include "input/switcher_controller.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

namespace {

SimulatedDesktop::Key keyOf(const Key& key, std::uint64_t flags) {
    // With Option, keys type characters that no filter should get.
    const bool isOption = (flags & modifierMasks[0]) != 0;
    return {.keyCode = key.code,
            .flags = flags,
            .text = isOption ? u"\u2202" : std::u16string(typedBy(key, flags)),
            .textWithReducedFlags = std::u16string(typedBy(key, flags))};
}

}  // namespace

bool Simulation::performAsUser(const Step& step) {
    const auto& [number, second, third] = step.numbers;
    switch (step.action) {
        case Action::pressModifier:
            changeFlags(flags_ | modifierMasks.at(static_cast<std::size_t>(number)));
            return true;
        case Action::releaseModifier:
            changeFlags(flags_ & ~modifierMasks.at(static_cast<std::size_t>(number)));
            return true;
        case Action::loseModifierRelease:
            flags_ &= ~modifierMasks.at(static_cast<std::size_t>(number));
            return true;
        case Action::pressKey:
        case Action::releaseKey:
            key(step);
            return true;
        case Action::loseKeyRelease:
            heldKeys_.erase(number);
            return true;
        case Action::hover:
        case Action::click:
        case Action::star:
        case Action::openTrustSettings:
            onPanel(step);
            return true;
        case Action::clickElsewhere:
            endSession();
            desktop_.clickElsewhere();
            return true;
        case Action::movePointer:
            pointer_ = {static_cast<double>(number), static_cast<double>(second)};
            desktop_.movePointer(pointer_);
            return true;
        case Action::openFromMenu:
            openFromMenu();
            return true;
        case Action::retryShortcut:
            // The menu has the entry, and its click is a click outside the panel.
            endSession();
            desktop_.clickElsewhere();
            tap_.isAbandoned = tap_.isAbandoned && !isTrusted();
            services_->retryInput();
            tapRetryDue_.reset();
            tap_.mayBeMissing = !services_->hotKeyMonitor().isRunning().get() && (isTapRefused_ || !isTrustedBySystem_);
            return true;
        case Action::useWindow:
            useWindow(static_cast<WindowId>(number));
            return true;
        case Action::set:
            set(number, second);
            return true;
        case Action::removeFavourite:
            if (number < static_cast<std::int64_t>(settings_.favourites.size())) {
                const auto identifier = settings_.favourites[static_cast<std::size_t>(number)];
                settings_.favourites.erase(std::ranges::find(settings_.favourites, identifier));
                services_->favourites().remove(identifier);
            }
            return true;
        case Action::removeAllFavourites:
            settings_.favourites.clear();
            services_->favourites().removeAll();
            return true;
        default:
            return false;
    }
}

bool Simulation::performOnLoop(const Step& step) {
    const Seconds duration(static_cast<double>(step.numbers[0]) / 1000);
    switch (step.action) {
        case Action::settle:
            desktop_.settle();
            hasLoopRun_ = true;
            return true;
        case Action::wait:
            desktop_.advance(duration);
            hasLoopRun_ = true;
            return true;
        case Action::runOneTask:
            static_cast<void>(desktop_.runOneTask());
            return true;
        case Action::stall:
            desktop_.stall(duration);
            if (activation_) {
                activation_->deadline += duration;
            }
            return true;
        case Action::holdSnapshots:
            areSnapshotsHeld_ = step.numbers[0] != 0;
            doSnapshotsReadFirst_ = step.numbers[0] == 2;
            desktop_.holdBackgroundWork(areSnapshotsHeld_);
            return true;
        default:
            return false;
    }
}

void Simulation::key(const Step& step) {
    const auto index = step.numbers[0];
    const Key& pressed = keys.at(static_cast<std::size_t>(index));
    const bool isDown = step.action == Action::pressKey;
    const TapFlags tap = tapFlags();
    const bool isWatched = desktop_.tapIsEnabled();
    ExpectedVerdict expected;
    if (isWatched) {
        expected = isDown ? expectedKeyDown(pressed, flags_, tap) : ExpectedVerdict{tap.isVisible, std::nullopt};
    }
    if (isDown) {
        heldKeys_.insert(index);
    } else {
        heldKeys_.erase(index);
    }
    expectCommand(expected.command, tap);
    const bool isHidden = hasQueueRun() && !panel_->state().isVisible;
    const auto event = keyOf(pressed, flags_);
    const bool isSwallowed = !(isDown ? desktop_.keyDown(event) : desktop_.keyUp(event));
    expect(!isSwallowed || !isHidden || (isDown && isTrigger(pressed, flags_, tap)), "keys.hidden",
           "a key other than the trigger is swallowed while the panel is hidden");
    expect(isSwallowed == expected.isSwallowed, "keys.verdict",
           isSwallowed ? "a key is swallowed that should reach the application"
                       : "a key reaches the application that should be swallowed");
}

void Simulation::expectCommand(const std::optional<SwitcherCommand>& command, const TapFlags& tap) {
    if (command) {
        const bool asksForSession = !tap.isVisible && std::holds_alternative<command::Invoke>(*command);
        commands_.push_back({*command, asksForSession});
        isRequestOpen_ = isRequestOpen_ || asksForSession;
    }
}

void Simulation::changeFlags(std::uint64_t flags) {
    flags_ = flags;
    if (desktop_.tapIsEnabled()) {
        expectCommand(expectedFlagsChange(flags_, tapFlags()).command, tapFlags());
    }
    expect(desktop_.flagsChanged(flags_), "keys.verdict", "a change of the modifiers is swallowed");
}

void Simulation::onPanel(const Step& step) {
    if (!panel_->state().isVisible) {
        return;
    }
    const auto index = step.numbers[0];
    const bool isRow = index >= 0 && index < static_cast<std::int64_t>(session_.rows.size());
    if (step.action == Action::openTrustSettings) {
        endSession();
        content_.onRequestPermissions();
        return;
    }
    if (step.action == Action::hover) {
        if (pointerAnchor_ && std::hypot(pointer_.x - pointerAnchor_->x, pointer_.y - pointerAnchor_->y) > 3.0) {
            pointerAnchor_.reset();
        }
        if (isRow && !pointerAnchor_) {
            session_.selection = static_cast<int>(index);
        }
        content_.onHover(static_cast<int>(index));
        return;
    }
    if (!isRow) {
        return;
    }
    const AppWindow window = services_->switcher().viewModel().rows.get()[static_cast<std::size_t>(index)].window;
    if (step.action == Action::click) {
        endSession();
        requestActivation(window);
        content_.onActivate(window);
    } else {
        session_.select(window.id);
        session_.pin();
        if (const auto selected = session_.selected()) {
            settings_.toggleFavourite(*selected);
        }
        content_.onToggleFavourite(window);
    }
}

/// The user's click in the window. When the program can know of it, the window must lead the list at once.
void Simulation::useWindow(WindowId id) {
    const auto* window = desktop_.window(id);
    if (window == nullptr) {
        return;
    }
    noteDesktopChange();
    const auto before = services_->windowIndex().windows().get();
    const Pid pid = window->pid;
    const bool isActivated = desktop_.frontmostPid() != pid;
    const bool isTold = isObserving_ && (isActivated || (observed_.contains(pid) && desktop_.focusedWindow(pid) != id));
    const auto row = std::ranges::find(before, id, &AppWindow::id);
    const bool isPlain = window->hasWindowNumber && !window->reportedWindowNumber && !applications_[pid].isHung;
    desktop_.focusWindow(id);
    // A window that got the number of the chosen one cannot be told from it.
    if (!activation_ || (activation_->hasBegun && activation_->window.id != id)) {
        usersWindow_ = id;
    }
    if (isTold) {
        noteReportedChange();
    }
    const auto& after = services_->windowIndex().windows().get();
    if (isTold && isPlain && row != before.end() && !breach_ && !after.empty() &&
        desktop_.platform().windowInventory.focusedWindowNumber(pid, Seconds(0)) == id) {
        std::vector<AppWindow> expected = before;
        std::rotate(expected.begin(), expected.begin() + (row - before.begin()),
                    expected.begin() + (row - before.begin()) + 1);
        expect(idsOf(after) == idsOf(expected), "list.last-used",
               fmt::format("the user went to {}, the list is {} instead of {}", id, idsOf(after), idsOf(expected)));
    }
}

void Simulation::openFromMenu() {
    endSession();
    desktop_.clickElsewhere();
    if (!services_->isActive()) {
        return;
    }
    beginSession();
    services_->switcher().showFromMenu();
    completeSession(false);
    session_.pin();
    session_.selection = 0;
}

void Simulation::set(std::int64_t setting, std::int64_t value) {
    auto& preferences = services_->preferences();
    const bool isOn = value != 0;
    const auto assign = [](auto& expected, auto& preference, auto chosen) {
        expected = chosen;
        preference.set(chosen);
    };
    switch (setting) {
        case 0:
            return assign(settings_.modifier, preferences.modifier,
                          allSwitcherModifiers.at(static_cast<std::size_t>(value) % 3));
        case 1:
            return assign(settings_.includeMinimized, preferences.includeMinimized, isOn);
        case 2:
            return assign(settings_.includeOtherSpaces, preferences.includeOtherSpaces, isOn);
        case 3:
            return assign(settings_.showShortcutHints, preferences.showShortcutHints, isOn);
        case 4:
            return assign(settings_.confirmOnModifierRelease, preferences.confirmOnModifierRelease, isOn);
        case 5:
            return assign(settings_.maximumVisibleRows, preferences.maximumVisibleRows,
                          static_cast<int>(4 + value % 13));
        case 6:
            return assign(settings_.layout, preferences.layout,
                          allSwitcherLayouts.at(static_cast<std::size_t>(value) % 3));
        case 7:
            return assign(settings_.showActiveAppWindowsFirst, preferences.showActiveAppWindowsFirst, isOn);
        case 8:
            return assign(settings_.favouritesFirst, preferences.favouritesFirst, isOn);
        default:
            return assign(settings_.automaticUpdateChecks, preferences.automaticUpdateChecks, isOn);
    }
}

}  // namespace ferrowyn::simulation
