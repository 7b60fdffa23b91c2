#include "tests/simulation/player.h"

#include <algorithm>
#include <utility>

namespace ferrowyn::simulation {

namespace {

constexpr std::size_t mostApplications = 7;
constexpr std::size_t mostWindows = 16;

constexpr std::array<std::string_view, 8> names{"Mail",   "App 2",       "App 10", "app 9",
                                                "Editor", "Some Editor", "Zoo",    "WindowServer"};
constexpr std::array<std::string_view, 14> titles{"",
                                                  "  ",
                                                  "Inbox",
                                                  " Save as ",
                                                  "Inbox - Mail",
                                                  "some:mail",
                                                  "SomeMail.cpp",
                                                  "app/model",
                                                  "Caf\u00e9",
                                                  "\u00c9t\u00e9s",
                                                  "Mail \u2014 12",
                                                  "12",
                                                  "d",
                                                  "A long title: Das Leben der Anderen"};
constexpr std::array<std::string_view, 10> typingKeys{"a", "s", "e", "i", "o", "m", "l", "d", "space", "e-acute"};
constexpr std::array<std::string_view, 8> navigationKeys{"left", "right", "up",      "down",
                                                         "home", "end",   "page-up", "page-down"};

std::int64_t indexOf(std::string_view name) {
    return std::ranges::find(keys, name, &Key::name) - keys.begin();
}

}  // namespace

void Player::begin() {
    hostility_ = random_.chance(150) ? 0 : static_cast<std::size_t>(random_.between(20, 400));
    const auto count = random_.between(1, 4);
    for (std::int64_t index = 0; index < count; ++index) {
        launch();
        for (auto windows = random_.between(0, 3); windows > 0; --windows) {
            open(static_cast<Pid>(lastPid_));
        }
    }
    perform(Action::wait, 300);
}

void Player::playSession() {
    laziness_ = random_.chance(400) ? 0 : random_.between(1, 3);
    const auto trigger = static_cast<std::size_t>(simulation_.settings().modifier);
    holdModifier(random_.chance(30) ? static_cast<std::size_t>(random_.below(3)) : trigger);
    pause();
    if (random_.chance(150)) {
        holdModifier(3);
    }
    pressKey(trigger == 1 && random_.chance(300) ? "grave" : "tab");
    pause();
    navigate();
    endSession();
    idle();
}

void Player::perform(Action action, std::int64_t first, std::int64_t second, std::int64_t third, std::string text) {
    if (simulation_.breach()) {
        return;
    }
    script_.push_back({action, {first, second, third}, std::move(text)});
    simulation_.perform(script_.back());
}

/// What happens between two actions of the user: the main thread runs, or not, and the desktop may do something.
void Player::pause() {
    if (random_.chance(hostility_)) {
        meddle();
    }
    switch (laziness_ == 0 ? 0 : random_.below(static_cast<std::size_t>(2 + 2 * laziness_))) {
        case 0:
            return perform(Action::settle);
        case 1:
            return perform(Action::wait, random_.pick(std::array{1, 20, 90, 120, 300}));
        case 2:
            return perform(Action::runOneTask);
        case 3:
            return;
        case 4:
            return perform(Action::stall, random_.pick(std::array{5, 120, 500, 2500}));
        default:
            return;
    }
}

void Player::meddle() {
    const auto kind = random_.below(100);
    if (kind < 20) {
        changeApplications();
    } else if (kind < 65) {
        changeWindows();
    } else if (kind < 75) {
        lie();
    } else if (kind < 88) {
        changeSystem();
    } else {
        changeSettings();
    }
}

void Player::pressKey(std::string_view name) {
    perform(Action::pressKey, indexOf(name));
    if (random_.chance(600)) {
        if (random_.chance(300)) {
            pause();
        }
        perform(random_.chance(20) ? Action::loseKeyRelease : Action::releaseKey, indexOf(name));
    }
}

void Player::releaseKeys() {
    const auto held = simulation_.heldKeys();
    for (const auto key : held) {
        perform(random_.chance(20) ? Action::loseKeyRelease : Action::releaseKey, key);
    }
}

void Player::holdModifier(std::size_t index) {
    if ((simulation_.heldModifiers() & modifierMasks.at(index)) == 0) {
        perform(Action::pressModifier, static_cast<std::int64_t>(index));
    }
}

void Player::releaseModifiers() {
    std::array<std::size_t, 4> order{0, 1, 2, 3};
    std::swap(order.front(), order.at(static_cast<std::size_t>(random_.below(4))));
    for (const std::size_t index : order) {
        if ((simulation_.heldModifiers() & modifierMasks.at(index)) != 0) {
            perform(random_.chance(20) ? Action::loseModifierRelease : Action::releaseModifier,
                    static_cast<std::int64_t>(index));
            if (random_.chance(300)) {
                pause();
            }
        }
    }
}

void Player::navigate() {
    for (auto count = random_.chance(350) ? 0 : random_.between(1, 7); count > 0; --count) {
        const auto kind = random_.below(100);
        if (kind < 35) {
            if (random_.chance(200)) {
                holdModifier(3);
            }
            pressKey("tab");
        } else if (kind < 52) {
            pressKey(random_.pick(navigationKeys));
        } else if (kind < 75) {
            if (random_.chance(500)) {
                releaseModifiers();
            }
            pressKey(random_.pick(typingKeys));
        } else if (kind < 82) {
            if (random_.chance(300)) {
                holdModifier(1);
            }
            pressKey(random_.pick(std::array<std::string_view, 3>{"backspace", "backspace", "silent"}));
        } else if (kind < 88) {
            holdModifier(1);
            pressKey(random_.chance(500) ? "d" : "l");
        } else if (kind < 92) {
            perform(Action::movePointer, random_.between(0, 12), 400);
            perform(Action::hover, random_.between(0, 6));
        } else if (kind < 94) {
            perform(Action::star, random_.between(0, 5));
        } else {
            pressKey(keys.at(static_cast<std::size_t>(random_.below(keys.size()))).name);
        }
        if (random_.chance(150)) {
            releaseKeys();
        }
        pause();
    }
}

void Player::endSession() {
    const auto kind = random_.below(100);
    if (kind < 50) {
        releaseModifiers();
    } else if (kind < 62) {
        pressKey(random_.chance(800) ? "return" : "enter");
    } else if (kind < 72) {
        pressKey("escape");
    } else if (kind < 80) {
        if (random_.chance(300)) {
            holdModifier(1);
        }
        perform(Action::pressKey, indexOf("1") + random_.below(9));
    } else if (kind < 86) {
        perform(Action::click, random_.between(0, 5));
    } else if (kind < 90) {
        perform(Action::clickElsewhere);
    } else if (kind < 92) {
        perform(Action::openFromMenu);
    } else if (kind < 93) {
        perform(Action::openTrustSettings);
    } else if (kind < 96) {
        perform(Action::wait, random_.pick(std::array{29'999, 30'000, 30'001, 36'000}));
    }
    pause();
    releaseKeys();
    releaseModifiers();
}

void Player::idle() {
    laziness_ = 0;
    for (auto count = random_.between(0, 3); count > 0; --count) {
        if (random_.chance(600) && anyWindow() != 0) {
            perform(Action::useWindow, anyWindow());
        }
        if (random_.chance(hostility_)) {
            meddle();
        }
        perform(Action::wait, random_.pick(std::array{30, 121, 400, 1500, 3000}));
    }
    if (random_.chance(5)) {
        perform(Action::storm, anyApplication(), 2100);
        perform(Action::wait, 400);
    }
    if (random_.chance(20)) {
        perform(Action::wait, random_.pick(std::array{12'000, 42'000}));
    }
    if (random_.chance(10)) {
        perform(Action::restartProgram);
        perform(Action::wait, 200);
    }
}

void Player::changeApplications() {
    const auto pid = anyApplication();
    const auto isOn = static_cast<std::int64_t>(random_.chance(500));
    switch (random_.below(8)) {
        case 0:
        case 1:
            return launch();
        case 2:
            return perform(Action::quit, pid);
        case 3:
            return perform(Action::hang, pid, isOn);
        case 4:
            return perform(Action::ignoreActivation, pid, isOn);
        case 5:
            return perform(Action::unobservable, pid, isOn);
        case 6:
            return perform(Action::hide, pid, isOn);
        default:
            return perform(random_.chance(800) ? Action::notify : Action::notifyLate, pid,
                           random_.below(notificationWords.size()));
    }
}

void Player::changeWindows() {
    const auto window = anyWindow();
    const auto isOn = static_cast<std::int64_t>(random_.chance(500));
    const auto isSilent = static_cast<std::int64_t>(random_.chance(300));
    switch (random_.below(14)) {
        case 0:
        case 1:
        case 2:
            return open(static_cast<Pid>(anyApplication()));
        case 3:
        case 4:
            return perform(Action::close, window, isSilent);
        case 5:
        case 6:
            return perform(Action::retitle, window, isSilent, 0, anyTitle());
        case 7:
            return perform(Action::minimize, window, isOn, isSilent);
        case 8:
            return perform(Action::fullScreen, window, isOn);
        case 9:
            return perform(Action::moveToSpace, window, isOn);
        case 10:
            return perform(Action::block, window, random_.chance(600) ? anyWindow() : 0);
        case 11:
            return perform(Action::restack, window);
        case 12:
            return perform(Action::frontmost, random_.chance(100) ? 0 : anyApplication());
        default:
            return perform(Action::useWindow, window);
    }
}

void Player::changeSystem() {
    const auto isOn = static_cast<std::int64_t>(random_.chance(600));
    const auto isSilent = static_cast<std::int64_t>(random_.chance(500));
    switch (random_.below(16)) {
        case 0:
        case 1:
            return perform(Action::changeSpace);
        case 2:
            return perform(Action::changeScreens, random_.between(0, 5));
        case 3:
            return perform(Action::serverAnswers, isOn);
        case 4:
            return perform(Action::numberLookup, isOn);
        case 5:
            for (auto count = random_.chance(150) ? 5 : 1; count > 0; --count) {
                perform(Action::tapTimesOut);
                if (count > 1) {
                    perform(Action::wait, random_.pick(std::array{100, 2500, 31'000}));
                }
            }
            return;
        case 6:
            return perform(Action::tapMeetsUserInput);
        case 7:
            return perform(Action::tapDiesSilently);
        case 8:
            return refuseTap();
        case 9:
            return perform(Action::tapGivesUp);
        case 10:
        case 11:
            return perform(Action::trust, isOn, isSilent);
        case 12:
            return perform(random_.chance(500) ? Action::announceTrust : Action::becomeActive);
        case 13:
            return perform(Action::secureInput, isOn);
        case 14:
            return perform(Action::holdSnapshots, isOn != 0 ? 0 : random_.between(1, 2));
        default:
            return perform(Action::retryShortcut);
    }
}

void Player::refuseTap() {
    const bool isRefused = random_.chance(250);
    perform(Action::refuseTap, static_cast<std::int64_t>(isRefused));
    if (isRefused && random_.chance(300)) {
        // A start without a tap, and one that is possible a moment later.
        perform(Action::restartProgram);
        perform(Action::wait, random_.between(100, 1500));
        perform(Action::refuseTap, 0);
        perform(Action::wait, 1500);
    }
}

void Player::changeSettings() {
    const auto kind = random_.below(20);
    if (kind < 16) {
        const auto setting = random_.below(settingWords.size());
        const auto range = setting == 5 ? 13U : setting == 0 || setting == 6 ? 3U : 2U;
        // The trigger rarely changes.
        perform(Action::set, setting == 0 && random_.chance(700) ? 6 : setting, random_.below(range));
    } else if (kind < 18) {
        perform(Action::storeFails, static_cast<std::int64_t>(random_.chance(400)));
    } else if (kind < 19) {
        perform(Action::removeFavourite, random_.below(3));
    } else {
        perform(Action::removeAllFavourites);
    }
}

void Player::lie() {
    const auto kind = random_.chance(400) ? static_cast<std::int64_t>(lieWords.size()) - 1 : random_.below(7);
    perform(Action::lie, anyWindow(), kind, random_.chance(100) ? 0 : anyWindow());
}

void Player::launch() {
    if (simulation_.applications().size() < mostApplications) {
        const auto kind = random_.chance(700) ? 0 : random_.between(1, 5);
        // Numbers of what has gone are used again.
        const auto pid = random_.chance(50) ? random_.between(firstPid, lastPid_ + 1) : ++lastPid_;
        lastPid_ = std::max(lastPid_, pid);
        perform(Action::launch, pid, kind, 0, std::string(random_.pick(names)));
    }
}

void Player::open(Pid pid) {
    if (simulation_.windows().size() < mostWindows) {
        const auto kind = random_.chance(700) ? 0 : random_.between(1, 4);
        const auto id = random_.chance(100) ? random_.between(1, lastWindow_ + 1) : ++lastWindow_;
        lastWindow_ = std::max(lastWindow_, id);
        perform(Action::open, id, pid, kind, anyTitle());
    }
}

std::int64_t Player::anyWindow() {
    const auto windows = simulation_.windows();
    return windows.empty() ? 0 : random_.pick(windows);
}

std::int64_t Player::anyApplication() {
    const auto pids = simulation_.applications();
    return pids.empty() ? 0 : random_.pick(pids);
}

std::string Player::anyTitle() {
    return std::string(random_.pick(titles));
}

}  // namespace ferrowyn::simulation
