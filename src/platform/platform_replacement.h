#pragma once

#include "platform/platform.h"

namespace ferrowyn {

/// Parts that take the place of a platform's own: for a desktop that differs from another one in a few of them, as a
/// simulated desktop with a real log does. Null keeps the platform's. Whoever gives a part owns it.
struct PlatformReplacement {
    Log* log = nullptr;
    WindowInventory* windowInventory = nullptr;
    EventTaps* eventTaps = nullptr;
    Panel* panel = nullptr;
    IconSource* icons = nullptr;
    const TextTable* texts = nullptr;
};

[[nodiscard]] inline Platform replacedIn(const Platform& platform, const PlatformReplacement& replacement) {
    const auto orOwn = [](auto* other, auto& own) -> auto& {
        return other != nullptr ? *other : own;
    };
    return {
        .mainLoop = platform.mainLoop,
        .backgroundWork = platform.backgroundWork,
        .log = orOwn(replacement.log, platform.log),
        .userDefaults = platform.userDefaults,
        .application = platform.application,
        .workspace = platform.workspace,
        .windowInventory = orOwn(replacement.windowInventory, platform.windowInventory),
        .accessibilityObservers = platform.accessibilityObservers,
        .windowControl = platform.windowControl,
        .trust = platform.trust,
        .eventTaps = orOwn(replacement.eventTaps, platform.eventTaps),
        .screens = platform.screens,
        .pointer = platform.pointer,
        .panel = orOwn(replacement.panel, platform.panel),
        .icons = orOwn(replacement.icons, platform.icons),
        .httpClient = platform.httpClient,
        .loginItem = platform.loginItem,
        .texts = orOwn(replacement.texts, platform.texts),
    };
}

}  // namespace ferrowyn
