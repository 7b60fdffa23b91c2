#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/simulation/random.h"
#include "tests/simulation/run.h"

namespace ferrowyn::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

Script scriptFrom(std::string_view text) {
    std::string error;
    const auto script = parsed(text, error);
    EXPECT_TRUE(script) << error;
    return script.value_or(Script());
}

std::string describe(const std::optional<Breach>& breach) {
    return breach ? breach->invariant + ": " + breach->detail : "";
}

TEST(SimulationTest, ASeedMeansTheSameEverywhere) {
    Random random(0);
    EXPECT_EQ(random.next(), 0xe220a8397b1dcdafU);
    EXPECT_EQ(random.next(), 0x6e789e6aa1b965f4U);
}

TEST(SimulationTest, ALifeIsTheSameEachTimeItIsPlayed) {
    const Life life = play(7, 3);
    EXPECT_THAT(life.script, Not(IsEmpty()));
    EXPECT_EQ(play(7, 3).script, life.script);
    EXPECT_NE(play(7, 4).script, life.script);
    EXPECT_NE(play(8, 3).script, life.script);
}

TEST(SimulationTest, AScriptIsReadBackAsItWasPrinted) {
    for (std::uint64_t number = 0; number < 5; ++number) {
        const Script script = play(1, number).script;
        EXPECT_EQ(scriptFrom(printed(script)), script);
    }
}

TEST(SimulationTest, WhatIsNoStepIsNamed) {
    for (const std::string line : {"presskey tab", "press-key", "press-key tabulator", "wait-ms 1x", "settle now",
                                   "retitle 1 loudly Inbox", "retitle 1 loudly \"Inbox"}) {
        std::string error;
        EXPECT_FALSE(parsed("settle\n" + line + "\n", error));
        EXPECT_EQ(error, line);
    }
}

TEST(SimulationTest, MinimisingLeavesWhatIsNeeded) {
    Script script;
    for (int number = 0; number < 100; ++number) {
        script.push_back({Action::wait, {number}, {}});
    }
    // Needs two steps that are far apart, in their order.
    const auto fails = [](const Script& shorter) {
        const auto first = std::ranges::find(shorter, Step{Action::wait, {7}, {}});
        return std::find(first, shorter.end(), Step{Action::wait, {80}, {}}) != shorter.end();
    };
    EXPECT_THAT(minimised(script, fails), ElementsAre(Step{Action::wait, {7}, {}}, Step{Action::wait, {80}, {}}));
}

TEST(SimulationTest, AWindowIsChosenInAScript) {
    // What the other tests rely on: that a script opens the panel, and that its steps reach the program.
    Simulation simulation;
    for (const Step& step : scriptFrom("launch 100 0 \"Mail\"\n"
                                       "open 1 100 standard \"Inbox\"\n"
                                       "open 2 100 standard \"Drafts\"\n"
                                       "use-window 2\n"
                                       "wait-ms 300\n"
                                       "press-modifier option\n"
                                       "press-key tab\n"
                                       "settle\n")) {
        simulation.perform(step);
    }
    EXPECT_TRUE(simulation.isPanelVisible());
    EXPECT_EQ(simulation.rowCount(), 2);
    EXPECT_EQ(simulation.sessionCount(), 1);
    simulation.perform({Action::releaseModifier, {0}, {}});
    simulation.perform({Action::settle, {}, {}});
    EXPECT_FALSE(simulation.isPanelVisible());
    simulation.finish();
    EXPECT_EQ(describe(simulation.breach()), "");
}

// Each was made short by the simulator, from what it found with a mistake in the program.
TEST(SimulationTest, TheScriptsOfTheRepositoryBreakNoInvariant) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(FERROWYN_SIMULATION_SCRIPTS)) {
        std::ifstream file(entry.path());
        const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        EXPECT_EQ(describe(replay(scriptFrom(text))), "") << entry.path();
        ++count;
    }
    EXPECT_GT(count, 0);
}

// A few sessions for the sanitizers and for a quick look; ferrowyn-sim plays as many as one likes.
TEST(SimulationTest, SomeSessionsBreakNoInvariant) {
    for (std::uint64_t number = 0; number < 40; ++number) {
        const Life life = play(20'260'101, number);
        ASSERT_EQ(describe(life.breach), "") << "life " << number << "\n" << printed(life.script);
    }
}

}  // namespace
}  // namespace ferrowyn::simulation
