#include "platform/macos/mac_utility_window.h"

#include <cmath>

#include "platform/macos/mac_views.h"

namespace ferrowyn {

int configureUtilityWindow(std::uintptr_t view, bool isResizable) {
    constexpr NSWindowStyleMask fixedSize = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                            NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskFullSizeContentView;
    NSWindow* const window = viewAt(view).window;
    window.styleMask = isResizable ? fixedSize | NSWindowStyleMaskResizable : fixedSize;
    window.titlebarAppearsTransparent = YES;
    window.releasedWhenClosed = NO;
    return static_cast<int>(std::ceil(window.frame.size.height - NSMaxY(window.contentLayoutRect)));
}

}  // namespace ferrowyn
