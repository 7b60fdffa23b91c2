#include "platform/user_defaults.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>

namespace ferrowyn {

namespace {

using IntegerLimits = std::numeric_limits<std::int64_t>;

std::int64_t parsedInteger(const std::string& text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) {
        return 0;
    }
    if (error == std::errc::result_out_of_range) {
        return text.starts_with('-') ? IntegerLimits::min() : IntegerLimits::max();
    }
    return error == std::errc{} ? number : 0;
}

std::int64_t nearestInteger(double real) {
    // The smallest double that is too large for an integer. The largest integer itself is not a double.
    constexpr double beyondLargest = 0x1p63;
    if (std::isnan(real)) {
        return 0;
    }
    if (real >= beyondLargest) {
        return IntegerLimits::max();
    }
    return real < -beyondLargest ? IntegerLimits::min() : static_cast<std::int64_t>(real);
}

/// Does not use from_chars, because the C++ library of macOS has it only for integers.
double parsedReal(const std::string& text) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    stream >> std::noskipws >> number;
    return stream && stream.peek() == std::istringstream::traits_type::eof() ? number : 0;
}

}  // namespace

std::optional<std::string> UserDefaults::string(std::string_view key) const {
    const auto stored = value(key);
    if (const auto* text = stored ? std::get_if<std::string>(&*stored) : nullptr) {
        return *text;
    }
    return std::nullopt;
}

bool UserDefaults::boolean(std::string_view key) const {
    const auto stored = value(key);
    if (!stored) {
        return false;
    }
    if (const auto* flag = std::get_if<bool>(&*stored)) {
        return *flag;
    }
    if (const auto* number = std::get_if<std::int64_t>(&*stored)) {
        return *number != 0;
    }
    if (const auto* real = std::get_if<double>(&*stored)) {
        return *real != 0 && !std::isnan(*real);
    }
    if (const auto* text = std::get_if<std::string>(&*stored)) {
        return *text == "true" || *text == "YES" || *text == "yes" || *text == "1";
    }
    return false;
}

std::int64_t UserDefaults::integer(std::string_view key) const {
    const auto stored = value(key);
    if (!stored) {
        return 0;
    }
    if (const auto* number = std::get_if<std::int64_t>(&*stored)) {
        return *number;
    }
    if (const auto* real = std::get_if<double>(&*stored)) {
        return nearestInteger(*real);
    }
    if (const auto* flag = std::get_if<bool>(&*stored)) {
        return *flag ? 1 : 0;
    }
    if (const auto* text = std::get_if<std::string>(&*stored)) {
        return parsedInteger(*text);
    }
    return 0;
}

double UserDefaults::real(std::string_view key) const {
    const auto stored = value(key);
    if (!stored) {
        return 0;
    }
    if (const auto* real = std::get_if<double>(&*stored)) {
        return *real;
    }
    if (const auto* text = std::get_if<std::string>(&*stored)) {
        return parsedReal(*text);
    }
    return static_cast<double>(integer(key));
}

std::optional<std::vector<std::string>> UserDefaults::stringArray(std::string_view key) const {
    const auto stored = value(key);
    if (const auto* list = stored ? std::get_if<std::vector<std::string>>(&*stored) : nullptr) {
        return *list;
    }
    return std::nullopt;
}

}  // namespace ferrowyn
