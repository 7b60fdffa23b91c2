#include "tests/macos/fake/fake_window_server.h"

#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

WindowServer& WindowServer::shared() {
    static WindowServer server;
    return server;
}

namespace {

Held<const Object> held(CFTypeRef owned) {
    return Held<const Object>(static_cast<const Object*>(owned));
}

Held<const Object> dictionaryOf(const WindowServer::Window& window) {
    Dictionary::Entries entries;
    for (const auto& [key, value] : window.keys) {
        entries.emplace(key, held(copy(value)));
    }
    return Held<const Object>(new Dictionary(std::move(entries)));
}

}  // namespace

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

const CFStringRef kCGWindowAlpha = String::constant("kCGWindowAlpha");
const CFStringRef kCGWindowBounds = String::constant("kCGWindowBounds");
const CFStringRef kCGWindowIsOnscreen = String::constant("kCGWindowIsOnscreen");
const CFStringRef kCGWindowLayer = String::constant("kCGWindowLayer");
const CFStringRef kCGWindowNumber = String::constant("kCGWindowNumber");
const CFStringRef kCGWindowOwnerName = String::constant("kCGWindowOwnerName");
const CFStringRef kCGWindowOwnerPID = String::constant("kCGWindowOwnerPID");

CFArrayRef CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow) {
    auto& server = WindowServer::shared();
    server.options.push_back(option);
    if (relativeToWindow != kCGNullWindowID) {
        Objects::shared().fault("CGWindowListCopyWindowInfo relative to a window");
    }
    if (server.isSilent) {
        return nullptr;
    }
    if (server.answersWithText) {
        return static_cast<CFArrayRef>(copy(Value(std::string("no list"))));
    }
    std::vector<Held<const Object>> list;
    for (const auto& window : server.windows) {
        const bool isExcluded = ((option & kCGWindowListExcludeDesktopElements) != 0 && window.isDesktopElement) ||
                                ((option & kCGWindowListOptionOnScreenOnly) != 0 && !window.isOnActiveSpace);
        if (const auto found = server.intruders.find(list.size()); found != server.intruders.end()) {
            list.push_back(held(copy(found->second)));
        }
        if (!isExcluded) {
            list.push_back(dictionaryOf(window));
        }
    }
    return (new Array(std::move(list)))->as<CFArrayRef>();
}
