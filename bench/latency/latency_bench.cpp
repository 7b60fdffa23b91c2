// Key press to painted panel and release to active window, of the program and, in the same run, of the least that any
// switcher must do. Arguments: the number of sessions (200 when not given), then "floor" to measure only that.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/latency/screen_watch.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::latency {
namespace {

using namespace x11test;
using std::chrono::milliseconds;

/// As long as a quick hand holds the keys; what the panel shows by then is its settled picture.
constexpr milliseconds hold{60};
/// Between sessions; the program may use it to draw ahead, as it may between a person's.
constexpr milliseconds pause{120};
constexpr int warmUpSessions = 10;
/// As long as the panel is looked at before its place is believed: several times what reading all windows takes.
constexpr milliseconds settling{250};
constexpr int mostAttempts = 20;

struct Series {
    std::vector<double> milliseconds;

    [[nodiscard]] double percentile(double share) const {
        auto sorted = milliseconds;
        std::sort(sorted.begin(), sorted.end());
        return sorted.empty() ? 0
                              : sorted[std::min(sorted.size() - 1,
                                                static_cast<std::size_t>(share * static_cast<double>(sorted.size())))];
    }
};

struct Result {
    /// Every point has changed: the panel is there.
    Series painted;
    /// It looks as it does at the end of the hold: nothing of it was drawn later.
    Series settled;
    Series activated;
    int failures = 0;
};

double since(Clock::time_point start, Clock::time_point end) {
    return std::chrono::duration<double, std::milli>(end - start).count();
}

/// A private desktop with this many windows; a new one for each subject, so that none inherits the other's state.
struct Desk {
    explicit Desk(int windowCount) : manager(server, "openbox"), desktop(server.display()), input(server.display()) {
        for (int index = 0; index < windowCount; ++index) {
            windows.push_back(std::make_unique<TestWindow>(
                server.display(), TestWindow::Options{.title = "Window " + std::to_string(index + 1),
                                                      .x = index * 37 % 600,
                                                      .y = index * 23 % 350,
                                                      .width = 600,
                                                      .height = 400}));
            if (!desktop.waitForActiveWindow(windows.back()->id())) {
                throw std::runtime_error("waited for a window to become active");
            }
        }
    }
    PrivateXServer server;
    WindowManagerProcess manager;
    TestDesktop desktop;
    TestInput input;
    std::vector<std::unique_ptr<TestWindow>> windows;
};

void runSession(Desk& desk, ScreenWatch& watch, Result* result) {
    const auto before = watch.picture();
    const auto previous = watch.activeWindow();
    desk.input.press(key::leftAlt);
    (void)watch.changes(milliseconds(5));
    const auto pressed = Clock::now();
    desk.input.press(key::tab);
    const auto moments = watch.changes(hold);
    desk.input.release(key::tab);
    (void)watch.changes(milliseconds(5));
    const auto released = Clock::now();
    desk.input.release(key::leftAlt);
    const auto activated = watch.activationAfter(previous, milliseconds(2000));
    (void)watch.changes(pause);
    if (result == nullptr) {
        return;
    }
    const auto hasChangedEverywhere = [&](const ScreenWatch::Moment& moment) {
        return std::equal(before.begin(), before.end(), moment.picture.begin(), std::not_equal_to<>());
    };
    const auto first = std::find_if(moments.begin(), moments.end(), hasChangedEverywhere);
    if (first == moments.end() || !activated) {
        ++result->failures;
        return;
    }
    result->painted.milliseconds.push_back(since(pressed, first->time));
    result->settled.milliseconds.push_back(since(pressed, moments.back().time));
    result->activated.milliseconds.push_back(since(released, *activated));
}

Result measure(Desk& desk, const ScreenWatch::Place& place, int sessions) {
    ScreenWatch watch(desk.server.display());
    watch.look(place);
    Result result;
    for (int session = 0; session < warmUpSessions + sessions; ++session) {
        runSession(desk, watch, session < warmUpSessions ? nullptr : &result);
    }
    desk.input.releaseAll();
    return result;
}

/// Opens the panel until it has the same place twice: it has all windows then, and it is known where to look.
ScreenWatch::Place findPanel(Desk& desk) {
    ScreenWatch watch(desk.server.display());
    std::optional<TestDesktop::Place> last;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        desk.input.press(key::leftAlt);
        desk.input.press(key::tab);
        if (!desk.desktop.waitForPanel(true)) {
            throw std::runtime_error("waited for the panel");
        }
        desk.input.release(key::tab);
        // Opening it has the list read again.
        (void)watch.changes(settling);
        const auto panel = desk.desktop.visiblePanel();
        const auto place = panel ? desk.desktop.placeOf(*panel) : std::nullopt;
        desk.input.tap(key::escape);
        desk.input.release(key::leftAlt);
        if (!desk.desktop.waitForPanel(false)) {
            throw std::runtime_error("waited for the panel to go");
        }
        if (place && place == last) {
            return {place->x, place->y, place->width, place->height};
        }
        last = place;
    }
    throw std::runtime_error("waited for the panel to keep its place");
}

Result measureProgram(int windowCount, int sessions, ScreenWatch::Place& place) {
    Desk desk(windowCount);
    // The level that a person's program has; it is only told to say on the terminal that it is ready.
    FerrowynProgram program(FERROWYN_PROGRAM, desk.server, {.environment = {}, .arguments = {"--log-level=default"}});
    if (!program.waitUntilActive()) {
        throw std::runtime_error("waited for the program: " + program.process().output());
    }
    place = findPanel(desk);
    return measure(desk, place, sessions);
}

Result measureFloor(int windowCount, int sessions, const ScreenWatch::Place& place) {
    Desk desk(windowCount);
    const std::size_t last = desk.windows.size() - 1;
    ChildProcess floor(
        {.command = {FERROWYN_LATENCY_FLOOR, std::to_string(place.x), std::to_string(place.y),
                     std::to_string(place.width), std::to_string(place.height),
                     std::to_string(desk.windows[last - 1]->id()), std::to_string(desk.windows[last]->id())},
         .environment = desk.server.clientEnvironment(),
         .inheritedDescriptor = std::nullopt});
    if (!floor.waitForOutput("ready")) {
        throw std::runtime_error("waited for the floor: " + floor.output());
    }
    return measure(desk, place, sessions);
}

void print(int windowCount, const std::string& what, const Series& program, const Series& floor) {
    const auto row = [&](const char* who, const Series& series) {
        fmt::print("{:>4} {:<22} {:<8} {:>8.2f} {:>8.2f} {:>8.2f}  {}\n", windowCount, what, who,
                   series.percentile(0.5), series.percentile(0.95), series.percentile(0.99),
                   series.milliseconds.size());
    };
    row("program", program);
    row("floor", floor);
    const auto ratio = [&](double share) { return program.percentile(share) / floor.percentile(share); };
    fmt::print("{:>4} {:<22} {:<8} {:>8.2f} {:>8.2f} {:>8.2f}\n", windowCount, what, "ratio", ratio(0.5), ratio(0.95),
               ratio(0.99));
}

/// What the floor alone costs on this machine, with a panel of the usual size.
int runFloor(int sessions) {
    int failures = 0;
    for (const int windowCount : {10, 200}) {
        const auto floor = measureFloor(windowCount, sessions, {320, 100, 640, 538});
        fmt::print("{:>4} painted {:.2f} {:.2f} activated {:.2f} {:.2f} (median, p99), failed {}\n", windowCount,
                   floor.painted.percentile(0.5), floor.painted.percentile(0.99), floor.activated.percentile(0.5),
                   floor.activated.percentile(0.99), floor.failures);
        failures += floor.failures;
    }
    return failures == 0 ? 0 : 1;
}

int run(int sessions) {
    fmt::print(
        "Milliseconds, {} sessions each, held {} ms (no auto-repeat). painted: key press to panel on the screen; "
        "settled: to the picture it keeps;\nactivated: release to _NET_ACTIVE_WINDOW changed. The floor maps, fills "
        "and unmaps a bare window of the same size.\n",
        sessions, hold.count());
    fmt::print("{:>4} {:<22} {:<8} {:>8} {:>8} {:>8}  {}\n", "wins", "what", "who", "median", "p95", "p99", "sessions");
    int failures = 0;
    for (const int windowCount : {10, 200}) {
        ScreenWatch::Place place{};
        const auto program = measureProgram(windowCount, sessions, place);
        const auto floor = measureFloor(windowCount, sessions, place);
        print(windowCount, "painted", program.painted, floor.painted);
        print(windowCount, "settled", program.settled, floor.settled);
        print(windowCount, "activated", program.activated, floor.activated);
        fmt::print("{:>4} sessions that failed: program {}, floor {}\n", windowCount, program.failures, floor.failures);
        failures += program.failures + floor.failures;
        std::fflush(stdout);
    }
    return failures == 0 ? 0 : 1;
}

}  // namespace
}  // namespace ferrowyn::latency

int main(int argumentCount, char** arguments) {
    const int sessions = argumentCount > 1 ? std::atoi(arguments[1]) : 200;
    try {
        const bool floorOnly = argumentCount > 2 && std::string(arguments[2]) == "floor";
        return floorOnly ? ferrowyn::latency::runFloor(std::max(sessions, 1))
                         : ferrowyn::latency::run(std::max(sessions, 1));
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
