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

/// Makes this the only running program of its user on its display, and carries what later starts ask of it. The claim
/// is an X selection: the server hands it to one client at a time, and takes it back when that client goes, however it
/// goes. Any client can take it away, which only a program that is not this one does: it is claimed again then. Main
/// thread.
class SingleInstance {
public:
    /// The selection that the running program owns.
    [[nodiscard]] static std::string selectionName();
    /// Null when another program has the claim; the connection is left then.
    [[nodiscard]] static std::unique_ptr<SingleInstance> claim(std::unique_ptr<X11Connection>& connection);

    enum class Answer {
        heard,
        /// No program has the claim, or the one that had it has ended without an answer.
        nobodyRuns,
        /// Who has the claim is hung, or not this program.
        none,
    };
    /// Passes the request to the program that runs, and waits until it has been heard there.
    [[nodiscard]] static Answer ask(const X11Connection& connection, ProgramRequest request,
                                    std::chrono::milliseconds patience);

    enum class Ending { nobodyRan, ended, stillRuns };
    /// What the program that runs says of itself (`tellOthers`); nothing when none runs or it says nothing.
    [[nodiscard]] static std::optional<std::string> wordOfRunning(const X11Connection& connection);
    /// Asks the program that runs to quit, and waits until it is gone.
    [[nodiscard]] static Ending endRunning(const X11Connection& connection, std::chrono::milliseconds patience);

    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Leaves a word for whoever looks for the program that runs; an empty one takes it back.
    void tellOthers(std::string_view word) const;

    /// Calls the handler with what each later start asks, and has asked until now, until the token is dropped. With a
    /// QCoreApplication, which outlives the token; as this object does.
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
