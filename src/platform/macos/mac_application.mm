#include "platform/macos/mac_application.h"

#import <AppKit/AppKit.h>

#include <string>
#include <utility>

#include "platform/macos/mac_notification_observation.h"
#include "platform/macos/mac_strings.h"
#include "platform/macos/mac_views.h"

namespace ferrowyn {

namespace {

NSApplicationActivationPolicy systemPolicy(ActivationPolicy policy) {
    switch (policy) {
        case ActivationPolicy::regular:
            return NSApplicationActivationPolicyRegular;
        case ActivationPolicy::accessory:
            return NSApplicationActivationPolicyAccessory;
        case ActivationPolicy::prohibited:
            return NSApplicationActivationPolicyProhibited;
    }
    return NSApplicationActivationPolicyRegular;
}

}  // namespace

Pid MacApplication::ownPid() const {
    return NSProcessInfo.processInfo.processIdentifier;
}

Subscription MacApplication::observeDidBecomeActive(std::function<void()> handler) {
    return observeNotification(NSNotificationCenter.defaultCenter, NSApplicationDidBecomeActiveNotification,
                               [handler = std::move(handler)](NSNotification*) { handler(); });
}

/// What the build was not told stands in the property list as an empty text.
static std::optional<std::string> addressOrNothing(id _Nullable value) {
    auto text = stringOrNothing(value);
    return text && !text->empty() ? text : std::nullopt;
}

BundleInfo MacApplication::bundleInfo() const {
    NSBundle* const bundle = NSBundle.mainBundle;
    return {.name = stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleName"]),
            .shortVersion = stringOrNothing([bundle objectForInfoDictionaryKey:@"CFBundleShortVersionString"]),
            .copyright = stringOrNothing([bundle objectForInfoDictionaryKey:@"NSHumanReadableCopyright"]),
            .path = utf8(bundle.bundlePath),
            .updateHost = addressOrNothing([bundle objectForInfoDictionaryKey:@"FerrowynUpdateHost"]),
            .homePage = addressOrNothing([bundle objectForInfoDictionaryKey:@"FerrowynHomePage"])};
}

std::string MacApplication::systemVersion() const {
    const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
    return std::to_string(version.majorVersion) + "." + std::to_string(version.minorVersion);
}

std::optional<int> MacApplication::calendarYear(WallTime moment) const {
    NSDate* const date = [NSDate dateWithTimeIntervalSince1970:moment.time_since_epoch().count()];
    return static_cast<int>([NSCalendar.currentCalendar component:NSCalendarUnitYear fromDate:date]);
}

void MacApplication::setActivationPolicy(ActivationPolicy policy) {
    [NSApplication.sharedApplication setActivationPolicy:systemPolicy(policy)];
}

void MacApplication::activate() {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
}

void MacApplication::bringToFront(WindowId window) {
    for (NSWindow* candidate in NSApplication.sharedApplication.windows) {
        if (static_cast<WindowId>(addressOf(candidate.contentView)) == window) {
            [candidate makeKeyAndOrderFront:nil];
            return;
        }
    }
}

void MacApplication::terminate() {
    [NSApplication.sharedApplication terminate:nil];
}

void MacApplication::revealInFileManager() {
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ NSBundle.mainBundle.bundleURL ]];
}

}  // namespace ferrowyn
