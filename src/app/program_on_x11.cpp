#include <QApplication>
#include <iostream>
#include <memory>
#include <string>

#include "app/program.h"
#include "app/session_check.h"
#include "app/single_instance.h"
#include "app/termination_signals.h"
#include "platform/linux/ini_user_defaults.h"
#include "platform/linux/journal_log.h"
#include "platform/linux/xdg_folders.h"
#include "platform/qt/qt_background_work.h"
#include "platform/qt/qt_main_loop.h"
#include "platform/x11/x11_connection.h"

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

    JournalLog log = makeLog(line);
    QtMainLoop mainLoop;
    QtBackgroundWork backgroundWork;
    IniUserDefaults userDefaults(XdgFolders::fromEnvironment().configHome / "Ferrowyn/Ferrowyn.ini", log);
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    log.write(LogLevel::debug, "ui", "Ferrowyn is running");
    instance.listen([&log] { log.write(LogLevel::standard, "ui", "Ferrowyn was started again"); });
    return QApplication::exec();
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
    if (isXWayland(*connection)) {
        return refuse(waylandMessage());
    }
    const auto instance = SingleInstance::claim(std::move(connection));
    if (!instance) {
        std::cout << "Ferrowyn is already running on this display.\n";
        return exit_status::success;
    }
    return runAlone(line, *instance, argumentCount, arguments);
}

}  // namespace ferrowyn
