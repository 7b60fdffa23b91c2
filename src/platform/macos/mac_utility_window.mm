#include "platform/macos/mac_utility_window.h"

#include "platform/macos/mac_views.h"

namespace ferrowyn {

void configureUtilityWindow(std::uintptr_t view, bool isResizable) {
    constexpr NSWindowStyleMask fixedSize = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskFullSizeContentView;
    NSWindow* const window = viewAt(view).window;
    window.styleMask = isResizable ? fixedSize | NSWindowStyleMaskResizable : fixedSize;
    window.titlebarAppearsTransparent = YES;
    window.releasedWhenClosed = NO;
}

}  // namespace ferrowyn
