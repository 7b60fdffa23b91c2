#include "main/mac_application_events.h"

#include <string_view>

#include "app/app_delegate.h"
#include "app/program_request.h"
#include "app/user_interface.h"
#include "core/texts.h"

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

std::unique_ptr<MacApplicationMenu> makeApplicationMenu(UserInterface& userInterface, const TextTable& texts,
                                                        AppDelegate* const& delegate) {
    const auto say = [&](std::string_view text) { return userInterface.translated({text, {}}); };
    return std::make_unique<MacApplicationMenu>(
        MacApplicationMenuTitles{.settings = say(texts.statusItem.settings), .quit = say(texts.statusItem.quit)},
        [&delegate] {
            if (delegate != nullptr) {
                delegate->perform(ProgramRequest::openSettings);
            }
        });
}

}  // namespace ferrowyn
