#include "platform/macos/mac_window_control.h"

#include "platform/log.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/mac_element.h"

namespace ferrowyn {

namespace {

std::optional<bool> booleanAttribute(const AXElementRef& window, CFStringRef attribute) {
    const AXUIElementRef element = MacElement::elementOf(window);
    return element != nullptr ? cf::boolean(accessibility::copyAttribute(element, attribute).value.get())
                              : std::nullopt;
}

}  // namespace

void MacWindowControl::setMessagingTimeout(Pid pid, Seconds timeout) {
    // Always a new handle: an old one may belong to an earlier process with the same number.
    application_ = {pid, accessibility::applicationElement(pid), timeout};
    accessibility::setMessagingTimeout(application_.element.get(), timeout);
}

void MacWindowControl::setMessagingTimeout(const AXElementRef& window, Seconds timeout) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        accessibility::setMessagingTimeout(element, timeout);
    }
}

void MacWindowControl::unminimize(const AXElementRef& window) {
    set(MacElement::elementOf(window), kAXMinimizedAttribute, kCFBooleanFalse);
}

void MacWindowControl::raise(const AXElementRef& window) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        logRefusal(kAXRaiseAction, AXUIElementPerformAction(element, kAXRaiseAction));
    }
}

void MacWindowControl::setMain(const AXElementRef& window) {
    set(MacElement::elementOf(window), kAXMainAttribute, kCFBooleanTrue);
}

void MacWindowControl::setFocused(const AXElementRef& window) {
    set(MacElement::elementOf(window), kAXFocusedAttribute, kCFBooleanTrue);
}

void MacWindowControl::setFocusedWindow(Pid pid, const AXElementRef& window) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        set(application(pid).element.get(), kAXFocusedWindowAttribute, element);
    }
}

void MacWindowControl::setFrontmost(Pid pid) {
    set(application(pid).element.get(), kAXFrontmostAttribute, kCFBooleanTrue);
}

std::optional<bool> MacWindowControl::isMain(const AXElementRef& window) const {
    return booleanAttribute(window, kAXMainAttribute);
}

std::optional<bool> MacWindowControl::isFocused(const AXElementRef& window) const {
    return booleanAttribute(window, kAXFocusedAttribute);
}

std::vector<AXElementRef> MacWindowControl::windowElements(Pid pid) const {
    const Application& owner = application(pid);
    const auto answer = accessibility::copyAttribute(owner.element.get(), kAXWindowsAttribute);
    std::vector<AXElementRef> elements;
    if (const auto windows = castTo<CFArrayRef>(answer.value.get())) {
        for (const CFTypeRef each : cf::valuesOf(windows)) {
            if (const auto element = castTo<AXUIElementRef>(each)) {
                // New handles, which need the timeout too: their numbers are asked for next.
                if (owner.timeout) {
                    accessibility::setMessagingTimeout(element, *owner.timeout);
                }
                elements.push_back(MacElement::make(element));
            }
        }
    }
    return elements;
}

std::optional<WindowId> MacWindowControl::windowNumber(const AXElementRef& window) const {
    const AXUIElementRef element = MacElement::elementOf(window);
    return element != nullptr ? windowNumbers_.numberOf(element) : std::nullopt;
}

const MacWindowControl::Application& MacWindowControl::application(Pid pid) const {
    if (!application_.element || application_.pid != pid) {
        application_ = {pid, accessibility::applicationElement(pid), std::nullopt};
    }
    return application_;
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
