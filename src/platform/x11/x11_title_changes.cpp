#include "platform/x11/x11_title_changes.h"

#include <algorithm>
#include <utility>

namespace ferrowyn {

X11TitleChanges::X11TitleChanges(MainLoop& mainLoop, std::function<void(xcb_window_t)> tell)
    : mainLoop_(mainLoop), tell_(std::move(tell)) {}

void X11TitleChanges::note(xcb_window_t window) {
    if (std::ranges::find(changed_, window) != changed_.end()) {
        return;
    }
    const bool isFirst = changed_.empty();
    changed_.push_back(window);
    if (isFirst) {
        const auto rest = lastTold_ ? *lastTold_ + interval - mainLoop_.now() : Seconds::zero();
        timer_ = mainLoop_.after(std::max(rest, gatheringTime), [this] { tellAll(); });
    }
}

void X11TitleChanges::tellAll() {
    lastTold_ = mainLoop_.now();
    for (const auto window : std::exchange(changed_, {})) {
        tell_(window);
    }
}

}  // namespace ferrowyn
