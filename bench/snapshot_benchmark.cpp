// What a reading of the desktop costs, in time and in how often it waits for the server: the first one, and the later
// ones, for which what rarely changes is known. Beside it the least that one can do: as many round trips that ask for
// nothing but one property of each window. Argument: the number of windows (200 when not given).

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/x11/x11_atoms.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_reader.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"
#include "tests/x11/harness/window_manager_process.h"

namespace ferrowyn {
namespace {

using namespace x11test;

constexpr int warmUps = 20;
constexpr int readings = 200;

template <typename Work>
std::vector<double> timesOf(const Work& work) {
    std::vector<double> milliseconds;
    for (int turn = 0; turn < warmUps + readings; ++turn) {
        const auto start = std::chrono::steady_clock::now();
        work();
        if (turn >= warmUps) {
            milliseconds.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        }
    }
    std::ranges::sort(milliseconds);
    return milliseconds;
}

void print(const char* what, const std::vector<double>& sorted, int roundTrips) {
    const auto at = [&](double share) {
        return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
    };
    fmt::print("{:<24} {:>8.2f} {:>8.2f} {:>8.2f}  {:>11}\n", what, at(0.5), at(0.95), at(0.99), roundTrips);
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
    auto connection = X11Connection::open(server.display().c_str());
    const X11Atoms atoms(*connection);
    X11DesktopReader reader(std::move(connection), atoms);
    const auto plain = X11Connection::open(server.display().c_str());
    const auto listed = desktop.clientList();

    int roundTrips = 0;
    std::size_t read = 0;
    const auto readOnce = [&] {
        const auto snapshot = reader.read();
        roundTrips = std::max(roundTrips, snapshot.roundTrips);
        read = snapshot.windows.size();
    };
    const auto readingAnew = timesOf(readOnce);
    reader.keepLastingFacts();
    const auto readingAgain = timesOf(readOnce);
    const auto titles = timesOf([&] { readTitlesOnly(*plain, atoms, listed); });
    fmt::print("{} windows, milliseconds, {} readings each\n", read, readings);
    fmt::print("{:<24} {:>8} {:>8} {:>8}  {:>11}\n", "what", "median", "p95", "p99", "round trips");
    print("all of it anew", readingAnew, roundTrips);
    print("as the program does", readingAgain, roundTrips);
    print("titles alone", titles, 1);
    return static_cast<int>(read) == windowCount && roundTrips <= 3 ? 0 : 1;
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
