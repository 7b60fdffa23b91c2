#include "main/other_instance.h"

#include <algorithm>

#include "platform/application.h"
#include "platform/platform.h"
#include "platform/workspace.h"

namespace ferrowyn {

bool isRunningElsewhere(const Platform& platform) {
    const auto own = platform.workspace.runningApplication(platform.application.ownPid());
    if (!own || !own->bundleIdentifier) {
        return false;
    }
    const auto all = platform.workspace.runningApplications();
    return std::ranges::any_of(all, [&own](const RunningApplication& other) {
        return other.pid != own->pid && !other.isTerminated && other.bundleIdentifier == own->bundleIdentifier;
    });
}

}  // namespace ferrowyn
