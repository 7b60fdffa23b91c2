#include "app/mac_application_events.h"

#include "app/app_delegate.h"

namespace ferrowyn {

MacApplicationEvents passingOnTo(AppDelegate* const& delegate) {
    return {.onDidFinishLaunching =
                [&delegate] {
                    if (delegate != nullptr && delegate->services() == nullptr) {
                        delegate->applicationDidFinishLaunching();
                    }
                },
            .onShouldHandleReopen =
                [&delegate](bool hasVisibleWindows) {
                    return delegate == nullptr || delegate->applicationShouldHandleReopen(hasVisibleWindows);
                },
            .onWillTerminate =
                [&delegate] {
                    if (delegate != nullptr) {
                        delegate->applicationWillTerminate();
                    }
                }};
}

}  // namespace ferrowyn
