#include "core/app_window.h"

namespace ferrowyn {

std::string AppWindow::displayTitle() const { return title.empty() ? appName : title; }  // replaced with the text module

}  // namespace ferrowyn

std::size_t std::hash<ferrowyn::AppWindow>::operator()(const ferrowyn::AppWindow& window) const noexcept {
    const std::size_t seed = std::hash<ferrowyn::WindowId>{}(window.id);
    return seed ^ (std::hash<ferrowyn::Pid>{}(window.pid) + 0x9e3779b97f4a7c15U + (seed << 6U) + (seed >> 2U));
}
