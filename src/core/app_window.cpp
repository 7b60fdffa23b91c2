#include "core/app_window.h"

#include "core/text.h"

namespace ferrowyn {

std::string AXElementRef::description() const {
    return "AXElementRef(" + std::to_string(hash()) + ")";
}

std::string_view AppWindow::displayTitleView() const {
    const std::string_view trimmed = text::trimmingWhitespaceAndNewlines(title);
    return trimmed.empty() ? std::string_view(appName) : trimmed;
}

}  // namespace ferrowyn

std::size_t std::hash<ferrowyn::AppWindow>::operator()(const ferrowyn::AppWindow& window) const noexcept {
    const std::size_t seed = std::hash<ferrowyn::WindowId>{}(window.id);
    return seed ^ (std::hash<ferrowyn::Pid>{}(window.pid) + 0x9e3779b97f4a7c15U + (seed << 6U) + (seed >> 2U));
}
