#include <QApplication>
#include <iostream>
#include <memory>
#include <string>

#include "app/app_services.h"
#include "app/program.h"
#include "app/session_check.h"
#include "app/single_instance.h"
#include "app/termination_signals.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_platform.h"
#include "platform/x11/x11_wayland_session.h"
#include "services/accessibility_authorizer.h"
#include "ui/switcher_content.h"

namespace ferrowyn {

namespace {

int refuse(const std::string& message) {
    std::cerr << message << "\n";
    return exit_status::unusableDesktop;
}

/// The program in a session that it can work in, as the only one there.
int runAlone(const CommandLine& line, SingleInstance& instance, int& argumentCount, char** arguments) {
    // A platform plugin for Wayland would find a compositor that this program cannot work with.
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);

    const auto desktop = X11Platform::create(
        {.minimumLogLevel = line.logLevel.value_or(LogLevel::standard), .mirrorsLog = line.logLevel.has_value()});
    if (!desktop) {
        return refuse(unreachableDisplayMessage(SessionEnvironment::current()));
    }
    const Platform& platform = desktop->platform();
    // Before the services say that they are active: who reads that may end the program at once.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    AppServices services(platform, switcherContentFactory(platform.texts));
    instance.listen(
        [&log = platform.log](ProgramRequest) { log.write(LogLevel::standard, "ui", "Ferrowyn was started again"); });
    if (services.authorizer().status().get() == AccessibilityStatus::notTrusted) {
        // Says what is missing, and what to do; the services start by themselves once it is there.
        services.authorizer().requestTrust();
    }
    platform.log.write(LogLevel::debug, "ui", "Ferrowyn is running");
    const int status = QApplication::exec();
    services.terminate();
    return status;
}

}  // namespace

int runOnX11(const CommandLine& line, int& argumentCount, char** arguments) {
    const auto environment = SessionEnvironment::current();
    if (const auto refusal = sessionRefusal(environment)) {
        return refuse(*refusal);
    }
    auto connection = X11Connection::open();
    if (!connection) {
        return refuse(unreachableDisplayMessage(environment));
    }
    if (isServerOfWaylandSession(connection->get(), connection->root())) {
        return refuse(waylandMessage());
    }
    const auto instance =
        SingleInstance::claim(std::move(connection), line.request.value_or(ProgramRequest::openSetup));
    if (!instance) {
        std::cout << "Ferrowyn is already running on this display.\n";
        return exit_status::success;
    }
    return runAlone(line, *instance, argumentCount, arguments);
}

}  // namespace ferrowyn
