#pragma once

namespace ferrowyn {

class AccessibilityObservers;
class Application;
class BackgroundWork;
class HttpClient;
class IconSource;
class KeyboardTaps;
class Log;
class LoginItem;
class MainLoop;
class Panel;
class Pointer;
class Screens;
class Trust;
class UserDefaults;
class WindowControl;
class WindowInventory;
class Workspace;
struct TextTable;

/// All interfaces of a desktop that the logic uses. The object that makes one owns the implementations and outlives
/// every service that has a reference to it.
struct Platform {
    MainLoop& mainLoop;
    BackgroundWork& backgroundWork;
    Log& log;
    UserDefaults& userDefaults;
    Application& application;
    Workspace& workspace;
    WindowInventory& windowInventory;
    AccessibilityObservers& accessibilityObservers;
    WindowControl& windowControl;
    Trust& trust;
    KeyboardTaps& keyboardTaps;
    Screens& screens;
    Pointer& pointer;
    Panel& panel;
    IconSource& icons;
    HttpClient& httpClient;
    LoginItem& loginItem;
    /// The fixed texts as this desktop words them.
    const TextTable& texts;
};

/// Parts that replace those of a platform, such as a real log on a simulated desktop. Null keeps the platform's part.
/// The caller owns the parts.
struct PlatformReplacement {
    BackgroundWork* backgroundWork = nullptr;
    Log* log = nullptr;
    WindowInventory* windowInventory = nullptr;
    KeyboardTaps* keyboardTaps = nullptr;
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
        .backgroundWork = orOwn(replacement.backgroundWork, platform.backgroundWork),
        .log = orOwn(replacement.log, platform.log),
        .userDefaults = platform.userDefaults,
        .application = platform.application,
        .workspace = platform.workspace,
        .windowInventory = orOwn(replacement.windowInventory, platform.windowInventory),
        .accessibilityObservers = platform.accessibilityObservers,
        .windowControl = platform.windowControl,
        .trust = platform.trust,
        .keyboardTaps = orOwn(replacement.keyboardTaps, platform.keyboardTaps),
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
