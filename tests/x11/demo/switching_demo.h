#pragma once

#include "tests/x11/demo/demo_stage.h"

namespace ferrowyn::x11test {

/// The switcher: quick and held, typed into, in its layouts, with a pinned application and a minimised window.
class SwitchingDemo {
public:
    explicit SwitchingDemo(DemoStage& stage) : stage_(stage), desk_(stage.desk) {}

    void run();

private:
    void quickSwitch();
    void heldSession();
    void typedFilter();
    void digitJump();
    void gridLayout();
    void pin();
    void restoreMinimised();

    DemoStage& stage_;
    DemoDesktop& desk_;
};

}  // namespace ferrowyn::x11test
