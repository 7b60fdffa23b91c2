#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "tests/simulation/script.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

/// A life of the program goes from its start to its end; this often, the user presses the trigger.
inline constexpr int triggersOfALife = 20;

struct Life {
    Script script;
    std::optional<Breach> breach;
    std::int64_t sessionCount = 0;
};

/// Plays the life with this number. The same seed and number give the same script everywhere.
[[nodiscard]] Life play(std::uint64_t seed, std::uint64_t number);
/// Carries out the script and ends the program.
[[nodiscard]] std::optional<Breach> replay(const Script& script);

/// The shortest script found that breaks the same invariant: leaves out as many steps as possible, then each in turn.
[[nodiscard]] Script minimised(Script script, const std::string& invariant);
/// The same, for any way to run a script.
[[nodiscard]] Script minimised(Script script, const std::function<bool(const Script&)>& stillFails);

}  // namespace ferrowyn::simulation
