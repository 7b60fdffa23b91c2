#include "platform/macos/mac_element.h"

#include <dlfcn.h>

namespace ferrowyn::accessibility {

namespace {

/// Errors of the element or its application, not of one attribute: a further request would end in the same way.
bool isSilence(AXError error) {
    return error == kAXErrorCannotComplete || error == kAXErrorInvalidUIElement || error == kAXErrorAPIDisabled;
}

Answers copyOneByOne(AXUIElementRef element, std::initializer_list<CFStringRef> attributes) {
    Answers answers;
    for (const CFStringRef attribute : attributes) {
        Answer answer = copyAttribute(element, attribute);
        if (isSilence(answer.error)) {
            // If it hangs, each further attribute would cost another timeout.
            return {answer.error, {}};
        }
        answers.values.push_back(std::move(answer.value));
    }
    return answers;
}

}  // namespace

Owned<AXUIElementRef> applicationElement(Pid pid) {
    return Owned<AXUIElementRef>(AXUIElementCreateApplication(pid));
}

void setMessagingTimeout(AXUIElementRef element, Seconds timeout) {
    if (element == nullptr) {
        return;
    }
    // Fails only for an invalid element or timeout, and then there is nothing to wait for.
    static_cast<void>(AXUIElementSetMessagingTimeout(element, static_cast<float>(timeout.count())));
}

Answer copyAttribute(AXUIElementRef element, CFStringRef attribute) {
    if (element == nullptr) {
        return {kAXErrorInvalidUIElement, {}};
    }
    CFTypeRef value = nullptr;
    const AXError error = AXUIElementCopyAttributeValue(element, attribute, &value);
    return {error, Owned<CFTypeRef>(value)};
}

Answers copyAttributes(AXUIElementRef element, std::initializer_list<CFStringRef> attributes) {
    const auto names = cf::makeArray(std::vector<CFTypeRef>(attributes.begin(), attributes.end()));
    CFArrayRef copied = nullptr;
    // Without the option to stop at the first error: an attribute that a window lacks leaves an error in its place.
    const AXError error = AXUIElementCopyMultipleAttributeValues(element, names.get(), 0, &copied);
    const Owned<CFArrayRef> values(copied);
    if (isSilence(error)) {
        return {error, {}};
    }
    const auto list = castTo<CFArrayRef>(values.get());
    if (error != kAXErrorSuccess || list == nullptr) {
        return copyOneByOne(element, attributes);
    }
    Answers answers;
    for (const CFTypeRef value : cf::valuesOf(list)) {
        answers.values.push_back(Owned<CFTypeRef>::retaining(value));
    }
    answers.values.resize(attributes.size());
    return answers;
}

std::string describe(std::string_view request, AXError error) {
    return std::string(request) + ": error " + std::to_string(error);
}

}  // namespace ferrowyn::accessibility

namespace ferrowyn {

MacWindowNumberLookup::Answer MacWindowNumberLookup::lookUp(AXUIElementRef element) const {
    const Function ask = function();
    if (ask == nullptr) {
        return {};
    }
    CGWindowID number = kCGNullWindowID;
    const AXError error = ask(element, &number);
    if (error != kAXErrorSuccess || number == kCGNullWindowID) {
        return {error, std::nullopt};
    }
    return {error, number};
}

MacWindowNumberLookup::Function MacWindowNumberLookup::function() const {
    std::call_once(once_,
                   [this] { function_ = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, "_AXUIElementGetWindow")); });
    return function_;
}

}  // namespace ferrowyn
