// What applications and the system do.

#include <algorithm>

#include "input/hot_key_monitor.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

bool Simulation::performAsApplication(const Step& step) {
    const auto& [number, second, third] = step.numbers;
    const auto pid = static_cast<Pid>(number);
    const auto id = static_cast<WindowId>(number);
    const bool isOn = second != 0;
    const auto change = [&](auto&& edit) {
        noteDesktopChange();
        desktop_.changeWindow(id, edit);
    };
    switch (step.action) {
        case Action::launch:
            launch(step);
            return true;
        case Action::quit:
            quit(pid);
            return true;
        case Action::hang:
            if (applications_.contains(pid)) {
                noteDesktopChange();
                applications_[pid].isHung = isOn;
                desktop_.setHung(pid, isOn);
            }
            return true;
        case Action::ignoreActivation:
            if (applications_.contains(pid)) {
                noteDesktopChange();
                applications_[pid].ignoresActivation = isOn;
                desktop_.setIgnoresActivation(pid, isOn);
            }
            return true;
        case Action::unobservable:
            if (applications_.contains(pid)) {
                applications_[pid].isUnobservable = isOn;
                desktop_.setUnobservable(pid, isOn);
            }
            return true;
        case Action::hide:
            if (applications_.contains(pid)) {
                noteDesktopChange();
                if (isObserving_ && desktop_.isHidden(pid) != isOn) {
                    noteReportedChange();
                }
                desktop_.setHidden(pid, isOn);
            }
            return true;
        case Action::open:
            openWindow(step);
            return true;
        case Action::close:
            noteDesktopChange();
            std::erase(windows_, id);
            desktop_.closeWindow(id, second != 0);
            return true;
        case Action::retitle:
            noteDesktopChange();
            if (second != 0) {
                desktop_.changeWindow(id, [&](auto& window) { window.title = step.text; });
            } else {
                desktop_.setTitle(id, step.text);
            }
            return true;
        case Action::minimize:
            change([&](auto& window) { window.isMinimized = isOn; });
            if (third == 0) {
                tell(id, isOn ? AccessibilityNotification::windowMiniaturized
                              : AccessibilityNotification::windowDeminiaturized);
            }
            return true;
        case Action::fullScreen:
            change([&](auto& window) { window.isFullScreen = isOn; });
            return true;
        case Action::moveToSpace:
            change([&](auto& window) { window.isOnActiveSpace = isOn; });
            return true;
        case Action::lie:
            noteDesktopChange();
            lie(id, second, third);
            return true;
        case Action::block:
            change([&](auto& window) {
                window.blockedBy =
                    second != 0 && second != number ? std::optional(static_cast<WindowId>(second)) : std::nullopt;
            });
            return true;
        case Action::notify:
            noteDesktopChange();
            desktop_.notify(pid, static_cast<AccessibilityNotification>(second));
            return true;
        case Action::notifyLate:
            noteDesktopChange();
            desktop_.notifyLate(pid, static_cast<AccessibilityNotification>(second));
            return true;
        case Action::storm:
            storm(pid, second);
            return true;
        default:
            return false;
    }
}

bool Simulation::performAsSystem(const Step& step) {
    const auto number = step.numbers[0];
    const bool isOn = number != 0;
    switch (step.action) {
        case Action::changeSpace:
        case Action::changeScreens:
            noteDesktopChange();
            if (isObserving_) {
                noteReportedChange();
            }
            if (step.action == Action::changeSpace) {
                desktop_.setSpaceChanged();
            } else {
                screenWidth_ = 1000 + 100 * static_cast<double>(number);
                desktop_.setScreens({{{0, 0, screenWidth_, 900}, {0, 0, screenWidth_, 875}}});
                desktop_.setScreenParametersChanged();
            }
            return true;
        case Action::restack:
            noteDesktopChange();
            desktop_.restack({static_cast<WindowId>(number)});
            return true;
        case Action::frontmost:
            noteDesktopChange();
            desktop_.setFrontmost(applications_.contains(static_cast<Pid>(number))
                                      ? std::optional(static_cast<Pid>(number))
                                      : std::nullopt);
            return true;
        case Action::serverAnswers:
            noteDesktopChange();
            desktop_.setWindowServerAnswers(isOn);
            return true;
        case Action::numberLookup:
            noteDesktopChange();
            desktop_.setHasWindowNumberLookup(isOn);
            return true;
        case Action::tapTimesOut:
        case Action::tapMeetsUserInput:
        case Action::tapDiesSilently:
            disableTap(step.action);
            return true;
        case Action::tapGivesUp:
            giveUpRequest();
            return true;
        case Action::refuseTap:
            isTapRefused_ = isOn;
            tapRefusalChanged_ = desktop_.now();
            if (isOn) {
                desktop_.refuseKeyboardTap("refused");
            } else {
                desktop_.allowKeyboardTap();
            }
            return true;
        case Action::trust:
            setTrust(isOn, step.numbers[1] == 0);
            return true;
        case Action::announceTrust:
        case Action::becomeActive:
            announcements_.push_back(desktop_.now());
            if (step.action == Action::announceTrust) {
                desktop_.announceTrustChange();
            } else {
                desktop_.becomeActiveApplication();
            }
            return true;
        case Action::secureInput:
            if (isInputSecure_ != isOn) {
                isInputSecure_ = isOn;
                secureInputChanged_ = desktop_.now();
                desktop_.setSecureInput(isOn);
            }
            return true;
        case Action::storeFails:
            isStoreFailing_ = isOn;
            desktop_.setStoreWritesFail(isOn);
            return true;
        case Action::restartProgram:
            endProgram();
            desktop_.forgetUnwrittenValues();
            startProgram();
            return true;
        default:
            return false;
    }
}

void Simulation::launch(const Step& step) {
    const auto pid = static_cast<Pid>(step.numbers[0]);
    if (pid <= 0 || applications_.contains(pid)) {
        return;
    }
    // What kind of application it is: the second one of a name has the same identifier.
    const auto kind = step.numbers[1];
    SimulatedDesktop::AppSpec app{.pid = pid};
    if (kind != 2) {
        app.localizedName = step.text;
    }
    if (kind != 1) {
        app.bundleIdentifier = "org.example." + step.text;
    }
    if (kind == 3) {
        app.bundleIdentifier = "com.apple.dock";
    }
    app.activationPolicy = kind == 4   ? ActivationPolicy::accessory
                           : kind == 5 ? ActivationPolicy::prohibited
                                       : ActivationPolicy::regular;
    noteDesktopChange();
    RunningApplication described{};
    described.pid = pid;
    described.activationPolicy = app.activationPolicy;
    described.bundleIdentifier = app.bundleIdentifier;
    described.localizedName = app.localizedName;
    const bool admitted = isAdmitted(described, SimulatedDesktop::ownPid);
    applications_[pid] = {.isAdmitted = admitted};
    if (admitted && isObserving_) {
        observed_.insert(pid);
        noteReportedChange();
    }
    desktop_.launch(app);
}

void Simulation::quit(Pid pid) {
    if (applications_.erase(pid) == 0) {
        return;
    }
    noteDesktopChange();
    observed_.erase(pid);
    if (isObserving_) {
        noteReportedChange();
    }
    std::erase_if(windows_, [&](WindowId id) { return desktop_.window(id)->pid == pid; });
    desktop_.terminate(pid);
}

void Simulation::openWindow(const Step& step) {
    const auto id = static_cast<WindowId>(step.numbers[0]);
    const auto pid = static_cast<Pid>(step.numbers[1]);
    if (id == 0 || desktop_.window(id) != nullptr || !applications_.contains(pid)) {
        return;
    }
    SimulatedDesktop::WindowSpec window{.id = id, .pid = pid, .title = step.text};
    // Places differ, except that each third window lies exactly on another.
    window.frame = {static_cast<double>(id % 3 == 0 ? 100 : 10 * (id % 50)), 50, 800, 600};
    switch (step.numbers[2]) {
        case 1:
            window.subrole = "AXDialog";
            break;
        case 2:
            window.subrole.reset();
            break;
        case 3:
            window.subrole = "AXFloatingWindow";
            break;
        case 4:
            window.frame.height = 47;
            break;
        default:
            break;
    }
    noteDesktopChange();
    windows_.push_back(id);
    desktop_.openWindow(window);
}

void Simulation::tell(WindowId id, AccessibilityNotification notification) {
    if (const auto* window = desktop_.window(id)) {
        desktop_.notify(window->pid, notification);
    }
}

/// What the application or the window server says about the window from now on; the last kind is the truth again.
void Simulation::lie(WindowId id, std::int64_t kind, std::int64_t value) {
    desktop_.changeWindow(id, [&](SimulatedDesktop::WindowSpec& window) {
        switch (kind) {
            case 0:
                window.reportedWindowNumber = static_cast<WindowId>(value);
                return;
            case 1:
                window.isListedByAccessibility = false;
                return;
            case 2:
                window.isListedByWindowServer = false;
                return;
            case 3:
                window.hasWindowNumber = false;
                return;
            case 4:
                window.hasAccessibilityFrame = false;
                return;
            case 5:
                window.layer = 3;
                return;
            case 6:
                window.alpha = 0.05;
                return;
            default:
                window.reportedWindowNumber.reset();
                window.isListedByAccessibility = window.isListedByWindowServer = true;
                window.hasWindowNumber = window.hasAccessibilityFrame = true;
                window.layer = 0;
                window.alpha = 1.0;
        }
    });
}

/// The application claims one focused window after the other, with numbers of windows that do not exist.
void Simulation::storm(Pid pid, std::int64_t count) {
    const auto focused = desktop_.focusedWindow(pid);
    if (!applications_.contains(pid) || !focused || !observed_.contains(pid)) {
        return;
    }
    noteDesktopChange();
    const auto* window = desktop_.window(*focused);
    const auto reported = window != nullptr ? window->reportedWindowNumber : std::nullopt;
    for (std::int64_t index = 0; index < count; ++index) {
        desktop_.changeWindow(
            *focused, [index](auto& each) { each.reportedWindowNumber = static_cast<WindowId>(1'000'000 + index); });
        desktop_.notify(pid, AccessibilityNotification::focusedWindowChanged);
    }
    desktop_.changeWindow(*focused, [&](auto& each) { each.reportedWindowNumber = reported; });
}

void Simulation::disableTap(Action action) {
    if (!desktop_.tapIsInstalled()) {
        return;
    }
    if (action == Action::tapDiesSilently) {
        if (desktop_.tapIsEnabled()) {
            tap_.disabledAt = desktop_.now();
            tap_.patience = Seconds(3);
            tap_.hadTrust = isTrustedBySystem_;
        }
        desktop_.disableTapSilently();
    } else if (action == Action::tapTimesOut) {
        tap_.posted.push_back(Disabling::byTimeout);
        desktop_.disableTapByTimeout();
    } else {
        tap_.posted.push_back(Disabling::byUserInput);
        desktop_.disableTapByUserInput();
    }
}

/// The tap goes on without an answer to its last trigger. If the main thread has not seen that one yet, it must not
/// open a session for it any more.
void Simulation::giveUpRequest() {
    desktop_.giveUpTapRequest();
    const auto last = std::ranges::find(commands_.rbegin(), commands_.rend(), true, &Command::asksForSession);
    if (isRequestOpen_ && last != commands_.rend()) {
        commands_.erase(std::next(last).base());
    }
    isRequestOpen_ = false;
}

void Simulation::setTrust(bool isTrusted, bool isAnnounced) {
    if (isTrustedBySystem_ != isTrusted) {
        isTrustedBySystem_ = isTrusted;
        trustChanged_ = desktop_.now();
        tap_.hadTrust = false;
    }
    if (isAnnounced) {
        announcements_.push_back(desktop_.now());
    }
    desktop_.setTrusted(isTrusted, isAnnounced);
}

}  // namespace ferrowyn::simulation
