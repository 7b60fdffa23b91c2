#include "platform/macos/mac_running_application.h"

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

ActivationPolicy policyFrom(NSApplicationActivationPolicy policy) {
    switch (policy) {
        case NSApplicationActivationPolicyRegular:
            return ActivationPolicy::regular;
        case NSApplicationActivationPolicyAccessory:
            return ActivationPolicy::accessory;
        case NSApplicationActivationPolicyProhibited:
            return ActivationPolicy::prohibited;
    }
    // One that a later system may add.
    return ActivationPolicy::prohibited;
}

}  // namespace

RunningApplication describe(NSRunningApplication* application) {
    return {.pid = application.processIdentifier,
            .isTerminated = application.terminated != NO,
            .activationPolicy = policyFrom(application.activationPolicy),
            .bundleIdentifier = optionalUtf8(application.bundleIdentifier),
            .localizedName = optionalUtf8(application.localizedName),
            .bundleURL = optionalUtf8(application.bundleURL.path)};
}

}  // namespace ferrowyn
