#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tests/simulation/random.h"
#include "tests/simulation/script.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

/// Plays the user and a hostile desktop: chooses one step after the other, from a seed and from what it sees of the
/// simulation. Every step is performed as soon as it is chosen, and added to the script.
class Player {
public:
    Player(Simulation& simulation, std::uint64_t seed) : simulation_(simulation), random_(seed) {}

    /// Starts the applications that are there at first.
    void begin();
    /// One session, and what happens before the next one.
    void playSession();
    [[nodiscard]] const Script& script() const { return script_; }

private:
    void perform(Action action, std::int64_t first = 0, std::int64_t second = 0, std::int64_t third = 0,
                 std::string text = {});
    void pause();
    void meddle();

    void pressKey(std::string_view name);
    void releaseKeys();
    void releaseModifiers();
    void holdModifier(std::size_t index);
    void navigate();
    void endSession();
    void idle();

    void changeApplications();
    void changeWindows();
    void changeSystem();
    void refuseTap();
    void changeSettings();
    void lie();
    void launch();
    void open(Pid pid);
    [[nodiscard]] std::int64_t anyWindow();
    [[nodiscard]] std::int64_t anyApplication();
    [[nodiscard]] std::string anyTitle();

    Simulation& simulation_;
    Random random_;
    Script script_;
    static constexpr std::int64_t firstPid = 101;
    std::int64_t lastPid_ = firstPid - 1;
    std::int64_t lastWindow_ = 0;
    /// How often, of a thousand pauses, the desktop does something of its own.
    std::size_t hostility_ = 0;
    /// How lazily the main thread runs: 0 runs everything at once.
    std::int64_t laziness_ = 0;
};

}  // namespace ferrowyn::simulation
