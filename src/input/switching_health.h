#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "core/published.h"

namespace ferrowyn {

class Log;

/// Whether switching works, as the last presses of the trigger and the last switches tell: what is installed and
/// granted may all be there, and the desktop still does something else. Main thread.
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

    /// One case may be a window that is busy or a menu that was open; the next in a row is no accident.
    static constexpr int toleratedInARow = 1;

    explicit SwitchingHealth(Log& log) : log_(log) {}

    /// Nothing while switching works, or has not been tried. Without the trigger nothing else is tried, so it comes
    /// first.
    [[nodiscard]] const Published<std::optional<Problem>>& problem() const { return problem_; }

    /// A chosen window was verified to be the active one, or was not in spite of every try.
    void noteActivation(bool isConfirmed);
    void noteTriggerAnsweredElsewhere();
    /// A key of the shortcut came to this program.
    void noteTrigger();
    /// Another trigger, or another desktop: what was seen of the old one says nothing.
    void forgetTriggers();
    void forgetAll();

private:
    void publish();

    Log& log_;
    int lostTriggers_ = 0;
    int unconfirmedActivations_ = 0;
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
