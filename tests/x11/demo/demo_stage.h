#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "tests/x11/demo/demo_desktop.h"

namespace ferrowyn::x11test {

/// The desktop on which the steps are shown, with the hands that do them, the timeline that is printed and the pictures
/// that are kept.
class DemoStage {
public:
    using Clock = std::chrono::steady_clock;

    /// Pictures of an earlier run go from the folder.
    DemoStage(const std::string& program, std::string pictures);

    DemoDesktop desk;

    static void step(const char* title);
    void report(bool isRight, const std::string& what);
    /// A line of the timeline: what was done, and what came of it, how long after.
    void report(bool isRight, const std::string& done, const std::string& what, std::chrono::nanoseconds elapsed,
                const std::string& detail = {});
    /// What else there is to know of a failure: which window is active now.
    void explain(const std::string& what = {});
    void picture(const std::string& name);
    /// All pixels, as they are now.
    [[nodiscard]] std::vector<std::uint32_t> screen() const;
    /// Whether most of this place has changed since.
    [[nodiscard]] bool isPainted(const TestDesktop::Place& place, const std::vector<std::uint32_t>& before) const;
    /// The picture is taken when the panel has the size that it is to have, so that it is the finished frame.
    void pictureOfPanel(const std::string& name, const std::function<bool(const TestDesktop::Place&)>& isReady);

    /// Holds Alt and taps Tab `times`; the first press is the one that is timed.
    void open(const std::string& keys, int times = 1);
    void type(const std::string& shown, std::initializer_list<std::uint8_t> keys);
    /// Does the last thing of a switch and times until the window is active.
    void finish(const std::string& keys, const std::function<void()>& act, xcb_window_t expected);
    void finish(const std::string& keys, std::uint8_t code, xcb_window_t expected);

    /// Prints how it went; the process's exit status.
    [[nodiscard]] int conclude() const;

private:
    [[nodiscard]] TestDesktop::Place whole() const;
    [[nodiscard]] std::string titleOf(xcb_window_t window) const;

    std::string pictures_;
    int pictureCount_ = 0;
    int passed_ = 0;
    int failed_ = 0;
};

}  // namespace ferrowyn::x11test
