#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace ferrowyn {

/// A request of the user to the running program, from outside of it. Two versions of the program may exchange the
/// values, so they must not change.
enum class ProgramRequest { openSetup = 0, openSwitcher = 1, openSettings = 2, quit = 3 };

/// The names of the requests for the desktop and on the command line.
inline constexpr std::array programRequestNames{
    std::pair{ProgramRequest::openSwitcher, std::string_view("show")},
    std::pair{ProgramRequest::openSettings, std::string_view("settings")},
    std::pair{ProgramRequest::openSetup, std::string_view("setup")},
    std::pair{ProgramRequest::quit, std::string_view("quit")},
};

[[nodiscard]] constexpr std::optional<ProgramRequest> programRequestNamed(std::string_view wanted) {
    for (const auto& [request, name] : programRequestNames) {
        if (name == wanted) {
            return request;
        }
    }
    return std::nullopt;
}

[[nodiscard]] constexpr std::string_view nameOf(ProgramRequest wanted) {
    for (const auto& [request, name] : programRequestNames) {
        if (request == wanted) {
            return name;
        }
    }
    return {};
}

}  // namespace ferrowyn
