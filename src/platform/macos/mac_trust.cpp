#include "platform/macos/mac_trust.h"

#include <ApplicationServices/ApplicationServices.h>
#include <Carbon/Carbon.h>

#include <array>
#include <utility>

#include "platform/macos/cf_values.h"

namespace ferrowyn {

bool MacTrust::isTrusted() const {
    return AXIsProcessTrusted() != 0;
}

bool MacTrust::requestWithPrompt() {
    std::array<const void*, 1> keys{kAXTrustedCheckOptionPrompt};
    std::array<const void*, 1> values{kCFBooleanTrue};
    const Owned<CFDictionaryRef> options(
        CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
                           &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    return AXIsProcessTrustedWithOptions(options.get()) != 0;
}

bool MacTrust::isSecureInputActive() const {
    return IsSecureEventInputEnabled() != 0;
}

Subscription MacTrust::observeChanges(std::function<void()> handler) {
    return observeDatabase_(std::move(handler));
}

}  // namespace ferrowyn
