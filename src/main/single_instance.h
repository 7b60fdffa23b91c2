#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/program_request.h"
#include "core/published.h"

namespace ferrowyn {

class X11Connection;

/// What the environment says about the session of the program. Empty means unset.
struct SessionEnvironment {
    std::string display;
    std::string waylandDisplay;
    std::string sessionType;

    [[nodiscard]] static SessionEnvironment current();
};

/// Why the program cannot work in this session and what the user can do, as a text for standard error; nothing when it
/// may work.
[[nodiscard]] std::optional<std::string> sessionRefusal(const SessionEnvironment& environment);
/// The text for the user when the X server that the environment names did not answer.
[[nodiscard]] std::string unreachableDisplayMessage(const SessionEnvironment& environment);
/// The refusal for a Wayland session, for an X server that is part of one.
[[nodiscard]] std::string waylandMessage();

/// Makes this the only running program of its user on its display, and receives the requests of later starts. The claim
/// is an X selection: the server gives it to one client at a time, and takes it back when that client ends in any way.
/// When another program takes the selection away, it is claimed again. Main thread.
class SingleInstance {
public:
    /// The selection that the running program owns.
    [[nodiscard]] static std::string selectionName();
    /// Null when another program has the claim; `connection` is unchanged then.
    [[nodiscard]] static std::unique_ptr<SingleInstance> claim(std::unique_ptr<X11Connection>& connection);

    enum class Answer {
        heard,
        /// No program has the claim, or the program that had it ended without an answer.
        nobodyRuns,
        /// The owner of the claim did not answer in time: it is hung or another program.
        none,
    };
    /// Sends the request to the running program, and waits for its answer.
    [[nodiscard]] static Answer ask(const X11Connection& connection, ProgramRequest request,
                                    std::chrono::milliseconds patience);

    enum class Ending { nobodyRan, ended, stillRuns };
    /// The text that the running program has left (`tellOthers`); nothing when none runs or it has left none.
    [[nodiscard]] static std::optional<std::string> wordOfRunning(const X11Connection& connection);
    /// Asks the running program to quit, and waits until it has ended.
    [[nodiscard]] static Ending endRunning(const X11Connection& connection, std::chrono::milliseconds patience);

    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Leaves a text for later starts (`wordOfRunning`). An empty text removes it.
    void tellOthers(std::string_view word) const;

    /// Calls the handler with each request of a later start, also with those that came before this call, until the
    /// token is dropped. Needs a QCoreApplication. It and this object outlive the token.
    [[nodiscard]] Subscription listen(std::function<void(ProgramRequest)> onRequest);

private:
    struct Claim {
        xcb_window_t window;
        xcb_atom_t selection;
        xcb_atom_t requestType;
        xcb_atom_t word;
    };
    SingleInstance(std::unique_ptr<X11Connection> connection, const Claim& claim);

    class Listener;

    std::unique_ptr<X11Connection> connection_;
    Claim claim_;
};

}  // namespace ferrowyn
