#pragma once

#include <chrono>
#include <random>
#include <thread>

#include "tests/x11/harness/test_input.h"

namespace ferrowyn::x11test {

/// Fast hands. Their pauses are the stimulus, not a wait for something.
class Hands {
public:
    explicit Hands(TestInput& input) : input_(input) {}

    /// Holds Alt, taps Tab `tabs` times and lets go, the last Tab before or after Alt.
    void toggle(int tabs = 1) {
        input_.press(key::leftAlt);
        for (int tab = 1; tab < tabs; ++tab) {
            pause();
            input_.press(key::tab);
            pause();
            input_.release(key::tab);
        }
        pause();
        input_.press(key::tab);
        pause();
        const bool tabFirst = random_() % 2 == 0;
        input_.release(tabFirst ? key::tab : key::leftAlt);
        pause();
        input_.release(tabFirst ? key::leftAlt : key::tab);
    }
    /// 1 to `most`.
    int someTabs(int most) { return std::uniform_int_distribution(1, most)(random_); }

private:
    void pause() {
        std::uniform_real_distribution<double> length(0.3, 30);
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(length(random_)));
    }

    TestInput& input_;
    // The same pauses in every run.
    std::mt19937 random_{20240817};
};

}  // namespace ferrowyn::x11test
