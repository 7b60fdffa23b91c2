#pragma once

namespace ferrowyn {

struct TextTable;
class AccessibilityObservers;
class Application;
class BackgroundWork;
class EventTaps;
class HttpClient;
class IconSource;
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

/// Everything that the logic asks of a desktop. The factory that makes one owns the implementations and outlives every
/// service that was given a reference.
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
    EventTaps& eventTaps;
    Screens& screens;
    Pointer& pointer;
    Panel& panel;
    IconSource& icons;
    HttpClient& httpClient;
    LoginItem& loginItem;
    /// The fixed texts as this desktop words them.
    const TextTable& texts;
};

}  // namespace ferrowyn
