#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_session.h"
#include "tests/x11/harness/ferrowyn_program.h"

namespace ferrowyn::x11test {

/// A small desktop with real applications: a window manager with its own Alt+Tab, six windows on two desktops, one of
/// them minimised, and the switcher.
class DemoDesktop : public DesktopSession {
public:
    explicit DemoDesktop(const std::string& program);

    /// Another start of the program, with this argument, until it ends: what it says, nothing when all is well.
    [[nodiscard]] std::string ask(const std::string& argument) const;

    SettingsFile settings{server};
    std::unique_ptr<FerrowynProgram> program;

    xcb_window_t files = 0;
    xcb_window_t notes = 0;
    xcb_window_t calculator = 0;
    xcb_window_t editor = 0;
    xcb_window_t build = 0;
    xcb_window_t shell = 0;

private:
    void paintBackground();
    /// Starts an application and waits for its window, which becomes the active one.
    xcb_window_t launch(const std::vector<std::string>& command, const TestDesktop::Place& place);
    void arrange();

    std::string programPath_;
    std::vector<std::unique_ptr<ChildProcess>> applications_;
};

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
