#include "platform/macos/mac_window_control.h"

#include "platform/log.h"

namespace ferrowyn {

namespace {

/// A new handle each time: an old one may belong to an earlier process with the same number.
Owned<AXUIElementRef> applicationHandle(Pid pid) {
    auto element = accessibility::applicationElement(pid);
    accessibility::setMessagingTimeout(element.get(), MacWindowControl::messagingTimeout);
    return element;
}

/// Null for an element of another desktop. The timeout belongs to the handle, which may be one that has none yet.
AXUIElementRef windowHandle(const AXElementRef& window) {
    const AXUIElementRef element = MacElement::elementOf(window);
    accessibility::setMessagingTimeout(element, MacWindowControl::messagingTimeout);
    return element;
}

std::optional<bool> booleanAttribute(AXUIElementRef element, CFStringRef attribute) {
    return cf::boolean(accessibility::copyAttribute(element, attribute).value.get());
}

}  // namespace

/// The window is raised, and made main and focused inside its application, before the application is activated:
/// activating it then brings this window forward, and not the application's own idea of its front window. The
/// application is made frontmost last.
void MacWindowControl::raiseAndFocus(const RaiseRequest& request) {
    const auto application = applicationHandle(request.pid);
    const AXUIElementRef window = windowHandle(request.window);
    if (!request.isRetry) {
        if (applications_.isHidden(request.pid)) {
            applications_.unhide(request.pid);
        }
        if (request.isMinimized) {
            set(windowHandle(request.chosenWindow()), kAXMinimizedAttribute, kCFBooleanFalse);
        }
    }
    if (request.blockedWindow) {
        raise(windowHandle(*request.blockedWindow));
    }
    raise(window);
    set(window, kAXMainAttribute, kCFBooleanTrue);
    set(window, kAXFocusedAttribute, kCFBooleanTrue);
    if (window != nullptr) {
        set(application.get(), kAXFocusedWindowAttribute, window);
    }
    applications_.activate(request.pid);
    set(application.get(), kAXFrontmostAttribute, kCFBooleanTrue);
}

ActivationState MacWindowControl::stateOf(Pid pid, const AXElementRef& window) const {
    const AXUIElementRef element = windowHandle(window);
    // One answer at a time: an application that hangs is waited for once.
    const auto isMain = booleanAttribute(element, kAXMainAttribute);
    const auto isFocused = isMain == true ? booleanAttribute(element, kAXFocusedAttribute) : isMain;
    if (!isFocused) {
        return ActivationState::unreadable;
    }
    return *isFocused && applications_.isActive(pid) ? ActivationState::active : ActivationState::notActive;
}

std::optional<AXElementRef> MacWindowControl::findWindow(Pid pid, WindowId window) const {
    const auto application = applicationHandle(pid);
    const auto answer = accessibility::copyAttribute(application.get(), kAXWindowsAttribute);
    if (const auto windows = castTo<CFArrayRef>(answer.value.get())) {
        for (const CFTypeRef each : cf::valuesOf(windows)) {
            if (const auto element = castTo<AXUIElementRef>(each)) {
                accessibility::setMessagingTimeout(element, messagingTimeout);
                if (windowNumbers_.numberOf(element) == window) {
                    return MacElement::make(element);
                }
            }
        }
    }
    return std::nullopt;
}

void MacWindowControl::raise(AXUIElementRef window) {
    if (window != nullptr) {
        logRefusal(kAXRaiseAction, AXUIElementPerformAction(window, kAXRaiseAction));
    }
}

void MacWindowControl::set(AXUIElementRef element, CFStringRef attribute, CFTypeRef value) {
    if (element != nullptr) {
        logRefusal(attribute, AXUIElementSetAttributeValue(element, attribute, value));
    }
}

void MacWindowControl::logRefusal(CFStringRef request, AXError error) const {
    if (error != kAXErrorSuccess) {
        log_.write(LogLevel::debug, "activation", accessibility::describe(cf::string(request).value_or("?"), error));
    }
}

}  // namespace ferrowyn
