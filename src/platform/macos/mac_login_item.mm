#include "platform/macos/mac_login_item.h"

#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

LoginItem::Error describe(NSError* error) {
    return {.domain = utf8(error.domain),
            .code = static_cast<int>(error.code),
            .localizedDescription = utf8(error.localizedDescription)};
}

}  // namespace

LoginItem::Status MacLoginItem::status() const {
    switch (SMAppService.mainAppService.status) {
        case SMAppServiceStatusNotRegistered:
            return Status::notRegistered;
        case SMAppServiceStatusEnabled:
            return Status::enabled;
        case SMAppServiceStatusRequiresApproval:
            return Status::requiresApproval;
        case SMAppServiceStatusNotFound:
            return Status::notFound;
    }
    // One that a later system may add.
    return Status::notRegistered;
}

std::optional<LoginItem::Error> MacLoginItem::registerProgram() {
    NSError* error = nil;
    return [SMAppService.mainAppService registerAndReturnError:&error] ? std::nullopt : std::optional(describe(error));
}

std::optional<LoginItem::Error> MacLoginItem::unregisterProgram() {
    NSError* error = nil;
    return [SMAppService.mainAppService unregisterAndReturnError:&error] ? std::nullopt
                                                                         : std::optional(describe(error));
}

}  // namespace ferrowyn
