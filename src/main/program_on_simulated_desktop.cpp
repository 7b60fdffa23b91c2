#include <QApplication>
#include <QTimer>
#include <chrono>
#include <iostream>
#include <memory>

#include "app/app_delegate.h"
#include "main/command_line.h"
#include "main/demo_desktop.h"
#include "main/outside_requests.h"
#include "main/program.h"
#include "main/program_log.h"
#include "main/qt_user_interface.h"
#include "main/termination_signals.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_display.h"
#include "platform/simulated/simulated_system.h"

namespace ferrowyn {

namespace {

/// How often the simulated clock catches up with the real one.
constexpr std::chrono::milliseconds tick{10};

}  // namespace

int runOnSimulatedDesktop(const CommandLine& line, int& argumentCount, char** arguments) {
    if (line.request == ProgramRequest::quit) {
        // Every simulated program has a separate desktop, so no other one can be asked to quit.
        std::cerr << notRunningMessage << "\n";
        return exit_status::unusableDesktop;
    }
    // Works also without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);

    const auto log = makeProgramLog(line);
    SimulatedDesktop desktop;
    openDemoWindows(desktop);
    const Platform platform = replacedIn(desktop.platform(), {.log = log.get()});
    // Before the services log that they are active, because a script that reads the log may end the program then.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    QtUserInterface userInterface(platform, [] { return std::make_unique<SimulatedStatusItem>(); });
    AppDelegate delegate(platform, userInterface);
    delegate.applicationDidFinishLaunching();
    const OutsideRequests requests(platform, delegate, line);

    auto last = std::chrono::steady_clock::now();
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, &clock, [&] {
        const auto now = std::chrono::steady_clock::now();
        desktop.advance(now - last);
        last = now;
        if (desktop.application().terminationCount > 0) {
            QCoreApplication::quit();
        }
    });
    clock.start(tick);
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}

}  // namespace ferrowyn
