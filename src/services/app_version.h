#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// A dotted version number. What follows the first "-" (a pre-release tag) does not count, and missing components count
/// as 0, so 1.2 equals 1.2.0 and 1.2-beta.
class AppVersion {
public:
    /// Never fails: a piece without a digit reads as 0, a number beyond all bounds as the largest one.
    explicit AppVersion(std::string text);

    /// Most significant first.
    [[nodiscard]] const std::vector<std::int64_t>& components() const { return components_; }
    /// The text as it was given, for display.
    [[nodiscard]] const std::string& original() const { return original_; }

    friend std::weak_ordering operator<=>(const AppVersion& a, const AppVersion& b);
    friend bool operator==(const AppVersion& a, const AppVersion& b) { return std::is_eq(a <=> b); }

private:
    std::vector<std::int64_t> components_;
    std::string original_;
};

}  // namespace ferrowyn
