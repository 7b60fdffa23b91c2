#pragma once

#include <optional>
#include <string>

namespace ferrowyn {

/// What the environment says about the session that the program was started in. Empty means unset.
struct SessionEnvironment {
    std::string display;
    std::string waylandDisplay;
    std::string sessionType;

    [[nodiscard]] static SessionEnvironment current();
};

/// Why the program cannot work in this session and what the user can do, as one text for standard error; nothing when
/// it can try.
[[nodiscard]] std::optional<std::string> sessionRefusal(const SessionEnvironment& environment);
/// The server named by the environment did not answer.
[[nodiscard]] std::string unreachableDisplayMessage(const SessionEnvironment& environment);
/// The same refusal as in a Wayland session, for a server that turned out to be part of one.
[[nodiscard]] std::string waylandMessage();

}  // namespace ferrowyn
