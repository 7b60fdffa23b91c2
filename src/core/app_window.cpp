#include "core/app_window.h"

#include "core/text.h"

namespace ferrowyn {

std::string_view AppWindow::displayTitleView() const {
    const std::string_view trimmed = text::trimmingWhitespaceAndNewlines(title);
    return trimmed.empty() ? std::string_view(appName) : trimmed;
}

}  // namespace ferrowyn
