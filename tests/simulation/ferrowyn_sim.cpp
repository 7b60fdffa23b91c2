// ferrowyn-sim: plays the user and a hostile desktop against the whole program, on the simulated desktop.

#include <fmt/format.h>

#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/simulation/run.h"

namespace ferrowyn::simulation {
namespace {

constexpr std::string_view usage =
    "ferrowyn-sim --seed N --sessions M [--minimise] [--jobs J]   plays M sessions\n"
    "ferrowyn-sim --replay FILE                                   carries out a script; - is standard input\n";

struct Options {
    std::uint64_t seed = 1;
    std::int64_t sessions = 1000;
    std::uint64_t jobs = 1;
    bool minimises = false;
    std::string replayed;
};

template <typename Number>
bool read(std::string_view text, Number& number) {
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool readOptions(const std::vector<std::string_view>& arguments, Options& options) {
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const auto name = arguments[index];
        if (name == "--minimise") {
            options.minimises = true;
            continue;
        }
        if (++index == arguments.size()) {
            return false;
        }
        const auto value = arguments[index];
        if (name == "--replay") {
            options.replayed = value;
        } else if (!(name == "--seed" && read(value, options.seed)) &&
                   !(name == "--sessions" && read(value, options.sessions)) &&
                   !(name == "--jobs" && read(value, options.jobs) && options.jobs > 0)) {
            return false;
        }
    }
    return true;
}

int replayFile(const std::string& name) {
    std::ifstream file;
    if (name != "-") {
        file.open(name);
    }
    std::istream& input = name == "-" ? static_cast<std::istream&>(std::cin) : file;
    const std::string text{std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>()};
    std::string error;
    const auto script = parsed(text, error);
    if (!script || text.empty()) {
        fmt::print(stderr, "{}: not a script: {}\n", name, error);
        return 2;
    }
    const auto breach = replay(*script);
    if (breach) {
        fmt::print("FAILED: {}: {}\n", breach->invariant, breach->detail);
        return 1;
    }
    fmt::print("{} steps, every invariant holds.\n", script->size());
    return 0;
}

/// The lives are numbered, and each is played by one thread alone, so the threads change neither a life nor which
/// failing life is the first.
class Tournament {
public:
    explicit Tournament(const Options& options) : options_(options) {}

    int run() {
        const auto began = std::chrono::steady_clock::now();
        std::vector<std::thread> threads;
        for (std::uint64_t job = 0; job < options_.jobs; ++job) {
            threads.emplace_back([this] { playLives(); });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - began;
        if (failed_.breach) {
            return report();
        }
        fmt::print("Seed {}: {} sessions in {} lives of the program, {} steps, {:.1f} s. Every invariant held.\n",
                   options_.seed, sessions_.load(), next_.load(), steps_.load(), taken.count());
        return 0;
    }

private:
    void playLives() {
        while (sessions_ < options_.sessions) {
            const std::uint64_t number = next_++;
            if (number > firstFailure_) {
                return;
            }
            Life life = play(options_.seed, number);
            sessions_ += life.sessionCount;
            steps_ += static_cast<std::int64_t>(life.script.size());
            const std::scoped_lock lock(lock_);
            sessionsOf_[number] = life.sessionCount;
            if (life.breach && number < firstFailure_) {
                firstFailure_ = number;
                failed_ = std::move(life);
            }
        }
    }

    int report() {
        const auto& breach = *failed_.breach;
        fmt::print("FAILED: {}: {}\n", breach.invariant, breach.detail);
        std::int64_t sessions = 0;
        for (const auto& [number, count] : sessionsOf_) {
            sessions += number <= firstFailure_ ? count : 0;
        }
        fmt::print("Seed {}, life {}, after {} sessions.\n", options_.seed, firstFailure_.load(), sessions);
        Script script = failed_.script;
        if (options_.minimises) {
            script = minimised(std::move(script), breach.invariant);
            if (const auto again = replay(script)) {
                fmt::print("Minimised: {}: {}\n", again->invariant, again->detail);
            } else {
                fmt::print("The script does not fail again: something depends on real time or on threads.\n");
            }
        }
        fmt::print("# {} steps\n{}", script.size(), printed(script));
        return 1;
    }

    const Options& options_;
    std::atomic<std::uint64_t> next_{0};
    std::atomic<std::uint64_t> firstFailure_{~std::uint64_t{0}};
    std::atomic<std::int64_t> sessions_{0};
    std::atomic<std::int64_t> steps_{0};
    std::mutex lock_;
    std::map<std::uint64_t, std::int64_t> sessionsOf_;
    Life failed_;
};

}  // namespace
}  // namespace ferrowyn::simulation

int main(int argumentCount, char** arguments) {
    using namespace ferrowyn::simulation;
    Options options;
    if (!readOptions({arguments + 1, arguments + argumentCount}, options)) {
        fmt::print(stderr, "{}", usage);
        return 2;
    }
    return options.replayed.empty() ? Tournament(options).run() : replayFile(options.replayed);
}
