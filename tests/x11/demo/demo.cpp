// Shows the switcher and its windows at work on a private desktop: presses real keys, prints what happened when, keeps
// a picture of each step, and fails when a step did not do what it should.

#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "tests/x11/demo/demo_stage.h"
#include "tests/x11/demo/demo_steps.h"

int main(int argc, char** argv) {
    std::string program;
    std::string pictures;
    for (int index = 1; index + 1 < argc; index += 2) {
        if (std::strcmp(argv[index], "--program") == 0) {
            program = argv[index + 1];
        } else if (std::strcmp(argv[index], "--pictures") == 0) {
            pictures = argv[index + 1];
        }
    }
    if (program.empty() || pictures.empty()) {
        std::fprintf(stderr, "usage: ferrowyn_demo --program PATH --pictures FOLDER\n");
        return 2;
    }
    try {
        ferrowyn::x11test::DemoStage stage(program, pictures);
        ferrowyn::x11test::SwitchingDemo(stage).run();
        ferrowyn::x11test::WindowsDemo(stage).run();
        return stage.conclude();
    } catch (const std::exception& error) {
        std::printf("  FAILED  %s\n0 passed, 1 failed\n", error.what());
        return 1;
    }
}
