#include "app/doctor_report.h"

#include <fmt/format.h>

#include <algorithm>

namespace ferrowyn {

namespace {

using Verdict = DoctorFinding::Verdict;

std::string_view label(Verdict verdict) {
    switch (verdict) {
        case Verdict::good:
            return "ok";
        case Verdict::notice:
            return "note";
        case Verdict::bad:
            return "FAIL";
    }
    return "";
}

}  // namespace

bool switchingCanWork(const DoctorReport& report) {
    return std::ranges::none_of(report, [](const auto& finding) { return finding.verdict == Verdict::bad; });
}

std::string formatted(const DoctorReport& report) {
    std::size_t width = 0;
    for (const auto& finding : report) {
        width = std::max(width, finding.subject.size());
    }
    std::string text = switchingCanWork(report) ? "Switching windows can work here.\n\n"
                                                : "Switching windows cannot work here yet.\n\n";
    for (const auto& finding : report) {
        text += fmt::format("[{:^4}] {:<{}}  {}\n", label(finding.verdict), finding.subject, width, finding.text);
        if (!finding.advice.empty()) {
            text += fmt::format("{:{}}-> {}\n", "", width + 9, finding.advice);
        }
    }
    return text;
}

}  // namespace ferrowyn
