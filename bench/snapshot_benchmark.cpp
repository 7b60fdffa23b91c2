// What a snapshot of the desktop costs a worker, in time and in how often it waits for the server: when nothing has
// changed, and when every title has. Beside it the least that one can do: one round trip that asks for nothing but one
// property of each window. Argument: the number of windows (200 when not given).

#include <fmt/format.h>
#include <xcb/xcb.h>

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/qt/qt_main_loop.h"
#include "platform/x11/x11_applications.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_event_connection.h"
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

struct Measured {
    const char* what;
    std::function<void()> prepare;
    std::function<int()> work;  // returns the round trips
    std::vector<double> milliseconds{};
    int roundTrips = 0;
};

/// In turn, so that whatever else the machine does in the meantime is the same for all of them.
void measure(std::vector<Measured>& subjects) {
    for (int turn = 0; turn < warmUps + readings; ++turn) {
        for (auto& subject : subjects) {
            subject.prepare();
            const auto start = std::chrono::steady_clock::now();
            subject.roundTrips = std::max(subject.roundTrips, subject.work());
            const auto end = std::chrono::steady_clock::now();
            if (turn >= warmUps) {
                subject.milliseconds.push_back(std::chrono::duration<double, std::milli>(end - start).count());
            }
        }
    }
}

void print(Measured& subject) {
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
    QtMainLoop mainLoop;
    X11EventConnection events(open());
    const X11Atoms atoms(events.connection());
    const X11ApplicationDirectory directory(nullptr);
    X11DesktopMonitor monitor(mainLoop, events, atoms, directory);
    X11DesktopSnapshots snapshots(mainLoop, monitor);
    const auto listed = desktop.clientList();
    std::size_t read = 0;
    const auto take = [&] {
        const auto snapshot = snapshots.take();
        read = snapshot.windows.size();
        return snapshot.roundTrips;
    };
    int turn = 0;
    const auto changeTitles = [&] {
        const auto title = std::to_string(++turn);
        for (const auto window : listed) {
            xcb_change_property(plain->get(), XCB_PROP_MODE_REPLACE, window, atoms.netWmName, atoms.utf8String, 8,
                                static_cast<std::uint32_t>(title.size()), title.data());
        }
        const XcbReply<xcb_get_input_focus_reply_t> served(
            xcb_get_input_focus_reply(plain->get(), xcb_get_input_focus(plain->get()), nullptr));
    };
    std::vector<Measured> subjects{{"nothing has changed", [] {}, take},
                                   {"every title has changed", changeTitles, take},
                                   {"titles alone", [] {},
                                    [&] {
                                        readTitlesOnly(*plain, atoms, listed);
                                        return 1;
                                    }}};
    std::thread worker([&] {
        measure(subjects);
        mainLoop.post([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    worker.join();
    fmt::print("{} windows, milliseconds, {} readings each\n", read, readings);
    fmt::print("{:<24} {:>8} {:>8} {:>8} {:>8}  {:>11}\n", "what", "best", "median", "p95", "p99", "round trips");
    std::ranges::for_each(subjects, print);
    return static_cast<int>(read) == windowCount && subjects[0].roundTrips <= 3 ? 0 : 1;
}

}  // namespace
}  // namespace ferrowyn

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    try {
        return ferrowyn::run(argumentCount > 1 ? std::max(std::atoi(arguments[1]), 1) : 200);
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
