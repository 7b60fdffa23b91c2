#include "platform/macos/mac_autorelease_pool.h"

namespace ferrowyn {

void inAutoreleasePool(const std::function<void()>& work) {
    @autoreleasepool {
        work();
    }
}

}  // namespace ferrowyn
