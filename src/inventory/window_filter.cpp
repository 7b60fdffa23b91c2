#include "inventory/window_filter.h"

#include <algorithm>
#include <cstddef>

#include "core/text.h"

namespace ferrowyn {

namespace {

constexpr std::int64_t normalLayer = 0;

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& set, std::string_view member) {
    return std::ranges::find(set, member) != set.end();
}

bool isLargeEnough(const Rect& rect) {
    return rect.width >= WindowFilter::minimumSide && rect.height >= WindowFilter::minimumSide;
}

/// A dialog without a title is a sheet, a pop-over or another part of a window, and is not listed.
bool hasAcceptableSubrole(const WindowFilter::Candidate& window) {
    if (window.subrole && contains(WindowFilter::standardWindowSubroles, *window.subrole)) {
        return true;
    }
    const bool mayBeDialog = !window.subrole || contains(WindowFilter::dialogSubroles, *window.subrole);
    return mayBeDialog && !text::trimmingWhitespace(window.title).empty();
}

}  // namespace

bool WindowFilter::isSwitchable(const RunningApplication& application) const {
    if (application.pid == ownPid_ || application.isTerminated ||
        application.activationPolicy == ActivationPolicy::prohibited) {
        return false;
    }
    if (application.bundleIdentifier) {
        return !contains(excludedBundleIdentifiers, *application.bundleIdentifier);
    }
    return !application.localizedName || !contains(excludedProcessNames, *application.localizedName);
}

bool WindowFilter::isSwitchable(const Candidate& window) const {
    if (!hasAcceptableSubrole(window)) {
        return false;
    }
    if (window.isMinimized) {
        return true;
    }
    if (window.frame && !window.frame->isEmpty() && !isLargeEnough(*window.frame)) {
        return false;
    }
    if (window.metadata == nullptr) {
        return true;
    }
    const WindowMetadata& metadata = *window.metadata;
    const Rect serverSize = metadata.bounds.isEmpty() ? window.frame.value_or(Rect{}) : metadata.bounds;
    return metadata.layer == normalLayer && metadata.alpha > invisibleAlpha && isLargeEnough(serverSize);
}

bool WindowFilter::isApplicationWindow(const WindowMetadata& metadata) const {
    return metadata.layer == normalLayer;
}

}  // namespace ferrowyn
