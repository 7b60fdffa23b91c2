#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

class Log;

/// Whether switching works, judged by the latest presses of the trigger and the latest switches, because it can fail
/// although everything is installed and allowed. Main thread.
class SwitchingHealth {
public:
    enum class Problem {
        /// The shortcut comes to nothing, since another program answers it.
        triggerAnsweredElsewhere,
        /// Sessions open, but the chosen windows do not come to the front.
        activationsUnconfirmed,
    };

    /// How programs call it among themselves.
    static constexpr std::array names{std::pair{Problem::triggerAnsweredElsewhere, "trigger-answered-elsewhere"},
                                      std::pair{Problem::activationsUnconfirmed, "activations-unconfirmed"}};

    /// One press may be lost to a menu that was open, and one application may hang or refuse the focus. A second press
    /// in a row, or a second application, counts as a fault.
    static constexpr std::size_t toleratedInARow = 1;

    explicit SwitchingHealth(Log& log) : log_(log) {}

    /// Nothing while switching works, or has not been tried. Without the trigger nothing else is tried, so it comes
    /// first.
    [[nodiscard]] const Published<std::optional<Problem>>& problem() const { return problem_; }

    /// A chosen window of this application was verified to be the active one, or could not be confirmed. However
    /// often the same application does not come to the front, that may be its own fault.
    void noteActivation(bool isConfirmed, Pid application);
    void noteTriggerAnsweredElsewhere();
    /// A key of the shortcut came to this program.
    void noteTrigger();
    /// Another trigger, or another desktop: what was seen of the old one says nothing.
    void forgetTriggers();
    void forgetAll();

private:
    void publish();

    Log& log_;
    std::size_t lostTriggers_ = 0;
    /// Applications whose windows failed to come to the front since the last success.
    std::unordered_set<Pid> unconfirmedApplications_;
    Published<std::optional<Problem>> problem_;
};

[[nodiscard]] constexpr std::string_view nameOf(SwitchingHealth::Problem problem) {
    for (const auto& [candidate, name] : SwitchingHealth::names) {
        if (candidate == problem) {
            return name;
        }
    }
    return {};
}
[[nodiscard]] constexpr std::optional<SwitchingHealth::Problem> switchingProblemNamed(std::string_view name) {
    for (const auto& [problem, itsName] : SwitchingHealth::names) {
        if (itsName == name) {
            return problem;
        }
    }
    return std::nullopt;
}

}  // namespace ferrowyn
