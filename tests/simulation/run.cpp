#include "tests/simulation/run.h"

#include <algorithm>

#include "tests/simulation/player.h"

namespace ferrowyn::simulation {

Life play(std::uint64_t seed, std::uint64_t number) {
    Simulation simulation;
    // Far apart for numbers that are close to each other.
    Player player(simulation, Random(seed * 0x9e3779b97f4a7c15U ^ Random(number).next()).next());
    player.begin();
    for (int session = 0; session < triggersOfALife && !simulation.breach(); ++session) {
        player.playSession();
    }
    simulation.finish();
    return {player.script(), simulation.breach(), simulation.sessionCount()};
}

std::optional<Breach> replay(const Script& script) {
    Simulation simulation;
    for (const Step& step : script) {
        simulation.perform(step);
        if (simulation.breach()) {
            break;
        }
    }
    simulation.finish();
    return simulation.breach();
}

Script minimised(Script script, const std::string& invariant) {
    return minimised(std::move(script), [&invariant](const Script& shorter) {
        const auto breach = replay(shorter);
        return breach && breach->invariant == invariant;
    });
}

Script minimised(Script script, const std::function<bool(const Script&)>& stillFails) {
    for (std::size_t length = std::max<std::size_t>(script.size() / 2, 1);;) {
        bool isShorter = false;
        for (std::size_t begin = 0; begin < script.size();) {
            Script shorter = script;
            const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(begin);
            shorter.erase(first, first + static_cast<std::ptrdiff_t>(std::min(length, script.size() - begin)));
            if (stillFails(shorter)) {
                script = std::move(shorter);
                isShorter = true;
            } else {
                begin += length;
            }
        }
        if (length == 1 && !isShorter) {
            return script;
        }
        length = std::max<std::size_t>(length / 2, 1);
    }
}

}  // namespace ferrowyn::simulation
