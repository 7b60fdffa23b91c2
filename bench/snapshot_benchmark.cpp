// What a reading of the desktop costs, in time and in how often it waits for the server: the first one, and the later
// ones, for which what rarely changes is known. Beside it the least that one can do: as many round trips that ask for
// nothing but one property of each window. Argument: the number of windows (200 when not given).

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_root_properties.h"
#include "platform/x11/x11_window_inventory.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn {
namespace {

using namespace x11test;

constexpr int warmUps = 20;
constexpr int readings = 200;

struct Subject {
    const char* what;
    std::function<int()> work;  // returns the round trips
    std::vector<double> milliseconds{};
    int roundTrips = 0;
};

/// In turn, so that whatever else the machine does in the meantime is the same for all of them.
void measure(std::vector<Subject>& subjects) {
    for (int turn = 0; turn < warmUps + readings; ++turn) {
        for (auto& subject : subjects) {
            const auto start = std::chrono::steady_clock::now();
            subject.roundTrips = std::max(subject.roundTrips, subject.work());
            const auto end = std::chrono::steady_clock::now();
            if (turn >= warmUps) {
                subject.milliseconds.push_back(std::chrono::duration<double, std::milli>(end - start).count());
            }
        }
    }
}

void print(Subject& subject) {
    auto& sorted = subject.milliseconds;
    std::ranges::sort(sorted);
    const auto at = [&](double share) {
        return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
    };
    fmt::print("{:<24} {:>8.2f} {:>8.2f} {:>8.2f} {:>8.2f}  {:>11}\n", subject.what, sorted.front(), at(0.5), at(0.95),
               at(0.99), subject.roundTrips);
}

/// One property of each window, all asked for before the first answer.
void readTitlesOnly(const X11Connection& connection, const X11Atoms& atoms, const std::vector<xcb_window_t>& windows) {
    std::vector<xcb_get_property_cookie_t> cookies;
    for (const auto window : windows) {
        cookies.push_back(
            xcb_get_property(connection.get(), 0, window, atoms.netWmName, XCB_GET_PROPERTY_TYPE_ANY, 0, 1024));
    }
    for (const auto cookie : cookies) {
        const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection.get(), cookie, nullptr));
    }
}

int run(int windowCount) {
    const PrivateXServer server;
    const WindowManagerProcess manager(server, "openbox");
    TestDesktop desktop(server.display());
    std::vector<std::unique_ptr<TestWindow>> windows;
    for (int index = 0; index < windowCount; ++index) {
        windows.push_back(std::make_unique<TestWindow>(
            server.display(), TestWindow::Options{.title = "Window " + std::to_string(index + 1)}));
        if (!desktop.waitForActiveWindow(windows.back()->id())) {
            throw std::runtime_error("waited for a window to become active");
        }
    }
    const auto open = [&] { return X11Connection::open(server.display().c_str()); };
    const auto plain = open();
    const X11Atoms atoms(*plain);
    X11DesktopReader forgetful(open(), atoms);
    X11DesktopReader reader(open(), atoms);
    reader.keepLastingFacts();
    const auto listed = desktop.clientList();
    std::size_t read = 0;
    const auto readWith = [&read](X11DesktopReader& from) {
        const auto snapshot = from.read();
        read = snapshot.windows.size();
        return snapshot.roundTrips;
    };
    std::vector<Subject> subjects{{"all of it anew", [&] { return readWith(forgetful); }},
                                  {"as the program does", [&] { return readWith(reader); }},
                                  {"titles alone", [&] {
                                       readTitlesOnly(*plain, atoms, listed);
                                       return 1;
                                   }}};
    measure(subjects);
    fmt::print("{} windows, milliseconds, {} readings each\n", read, readings);
    fmt::print("{:<24} {:>8} {:>8} {:>8} {:>8}  {:>11}\n", "what", "best", "median", "p95", "p99", "round trips");
    std::ranges::for_each(subjects, print);
    return static_cast<int>(read) == windowCount && subjects[1].roundTrips <= 3 ? 0 : 1;
}

}  // namespace
}  // namespace ferrowyn

int main(int argumentCount, char** arguments) {
    try {
        return ferrowyn::run(argumentCount > 1 ? std::max(std::atoi(arguments[1]), 1) : 200);
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
