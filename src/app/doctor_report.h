#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// One thing that was looked at.
struct DoctorFinding {
    enum class Verdict {
        good,
        /// Switching works without it, but something else does not, or looks worse.
        notice,
        /// Switching cannot work.
        bad,
    };

    Verdict verdict = Verdict::good;
    std::string subject;
    std::string text;
    /// What to do about it; empty when there is nothing to do.
    std::string advice;

    friend bool operator==(const DoctorFinding&, const DoctorFinding&) = default;
};

using DoctorReport = std::vector<DoctorFinding>;

[[nodiscard]] bool switchingCanWork(const DoctorReport& report);
/// For a person and for a bug report: the outcome, then a line for each finding, its advice below it.
[[nodiscard]] std::string formatted(const DoctorReport& report);

}  // namespace ferrowyn
