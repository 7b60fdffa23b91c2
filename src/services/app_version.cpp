#include "services/app_version.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace ferrowyn {

namespace {

std::int64_t digitsOf(std::string_view piece) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    std::int64_t number = 0;
    for (const char character : piece) {
        if (character < '0' || character > '9') {
            continue;
        }
        const std::int64_t digit = character - '0';
        if (number > (largest - digit) / 10) {
            return largest;
        }
        number = number * 10 + digit;
    }
    return number;
}

std::int64_t componentAt(const std::vector<std::int64_t>& components, std::size_t index) {
    return index < components.size() ? components[index] : 0;
}

}  // namespace

AppVersion::AppVersion(std::string text) : original_(std::move(text)) {
    auto rest = std::string_view(original_);
    rest = rest.substr(0, rest.find('-'));
    while (true) {
        const auto dot = rest.find('.');
        components_.push_back(digitsOf(rest.substr(0, dot)));
        if (dot == std::string_view::npos) {
            return;
        }
        rest.remove_prefix(dot + 1);
    }
}

std::weak_ordering operator<=>(const AppVersion& a, const AppVersion& b) {
    const auto count = std::max(a.components_.size(), b.components_.size());
    for (std::size_t index = 0; index < count; ++index) {
        const auto order = componentAt(a.components_, index) <=> componentAt(b.components_, index);
        if (order != std::strong_ordering::equal) {
            return order;
        }
    }
    return std::weak_ordering::equivalent;
}

}  // namespace ferrowyn
