#include "platform/macos/mac_workspace.h"

#import <AppKit/AppKit.h>

#include <memory>
#include <utility>

#include "platform/macos/cocoa.h"

namespace ferrowyn {

namespace {

using Kind = WorkspaceEvent::Kind;
using Subscriptions = std::vector<Subscription>;

struct NotificationKind {
    NSNotificationName name;
    Kind kind;
};

ActivationPolicy policyFrom(NSApplicationActivationPolicy policy) {
    switch (policy) {
        case NSApplicationActivationPolicyRegular:
            return ActivationPolicy::regular;
        case NSApplicationActivationPolicyAccessory:
            return ActivationPolicy::accessory;
        case NSApplicationActivationPolicyProhibited:
            return ActivationPolicy::prohibited;
    }
    // A value that a later system may add.
    return ActivationPolicy::prohibited;
}

/// As it is at this moment.
RunningApplication describe(NSRunningApplication* application) {
    return {.pid = application.processIdentifier,
            .isTerminated = application.terminated != NO,
            .activationPolicy = policyFrom(application.activationPolicy),
            .bundleIdentifier = optionalUtf8(application.bundleIdentifier),
            .localizedName = optionalUtf8(application.localizedName),
            .bundleURL = optionalUtf8(application.bundleURL.path)};
}

std::optional<RunningApplication> applicationOf(NSNotification* notification) {
    const id application = [notification.userInfo objectForKey:NSWorkspaceApplicationKey];
    return [application isKindOfClass:[NSRunningApplication class]] ? std::optional(describe(application))
                                                                    : std::nullopt;
}

NSURL* placeOf(std::string_view bundleIdentifier) {
    return [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:nsString(bundleIdentifier)];
}

/// Nil for a process that has ended; every message to nil answers no.
NSRunningApplication* applicationWith(Pid pid) {
    return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
}

constexpr NSApplicationActivationOptions noOptions{};

}  // namespace

std::vector<RunningApplication> MacWorkspace::runningApplications() const {
    std::vector<RunningApplication> all;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
        all.push_back(describe(application));
    }
    return all;
}

std::optional<RunningApplication> MacWorkspace::runningApplication(Pid pid) const {
    auto* const application = [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
    return application == nil ? std::nullopt : std::optional(describe(application));
}

std::optional<Pid> MacWorkspace::frontmostPid() const {
    auto* const application = NSWorkspace.sharedWorkspace.frontmostApplication;
    return application == nil ? std::nullopt : std::optional<Pid>(application.processIdentifier);
}

Subscription MacWorkspace::observe(EventHandler handler) {
    auto* const center = NSWorkspace.sharedWorkspace.notificationCenter;
    const auto shared = std::make_shared<const EventHandler>(std::move(handler));
    auto subscriptions = std::make_shared<Subscriptions>();
    for (const auto& [name, kind] : {
             NotificationKind{NSWorkspaceDidLaunchApplicationNotification, Kind::didLaunch},
             NotificationKind{NSWorkspaceDidTerminateApplicationNotification, Kind::didTerminate},
             NotificationKind{NSWorkspaceDidActivateApplicationNotification, Kind::didActivate},
             NotificationKind{NSWorkspaceDidHideApplicationNotification, Kind::didHide},
             NotificationKind{NSWorkspaceDidUnhideApplicationNotification, Kind::didUnhide},
             NotificationKind{NSWorkspaceActiveSpaceDidChangeNotification, Kind::activeSpaceDidChange},
         }) {
        subscriptions->push_back(
            observeNotification(center, name, [shared, reported = kind](NSNotification* notification) {
                (*shared)({.kind = reported, .application = applicationOf(notification)});
            }));
    }
    subscriptions->push_back(
        observeNotification(NSNotificationCenter.defaultCenter, NSApplicationDidChangeScreenParametersNotification,
                            [shared](NSNotification*) { (*shared)({.kind = Kind::screenParametersDidChange}); }));
    return Subscription([subscriptions] { subscriptions->clear(); });
}

std::optional<std::string> MacWorkspace::installedApplicationName(std::string_view bundleIdentifier) const {
    NSURL* const place = placeOf(bundleIdentifier);
    NSBundle* const bundle = place == nil ? nil : [NSBundle bundleWithURL:place];
    if (auto displayName = stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleDisplayName"])) {
        return displayName;
    }
    return stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleName"]);
}

std::optional<std::string> MacWorkspace::installedApplicationPath(std::string_view bundleIdentifier) const {
    return optionalUtf8(placeOf(bundleIdentifier).path);
}

bool MacWorkspace::open(std::string_view url) {
    NSURL* const address = [NSURL URLWithString:nsString(url)];
    return address != nil && [NSWorkspace.sharedWorkspace openURL:address];
}

bool MacWorkspace::openSettings(SettingsPage page) {
    switch (page) {
        case SettingsPage::accessibility:
            return open("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility");
        case SettingsPage::loginItems:
            return open("x-apple.systempreferences:com.apple.LoginItems-Settings.extension");
    }
    return false;
}

bool MacRunningApplicationControl::isHidden(Pid pid) const {
    return applicationWith(pid).hidden;
}

void MacRunningApplicationControl::unhide(Pid pid) {
    [applicationWith(pid) unhide];
}

void MacRunningApplicationControl::activate(Pid pid) {
    [applicationWith(pid) activateWithOptions:noOptions];
}

bool MacRunningApplicationControl::isActive(Pid pid) const {
    return applicationWith(pid).active;
}

}  // namespace ferrowyn
