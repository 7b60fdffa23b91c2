#include <QApplication>
#include <QLocale>
#include <QSessionManager>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "app/app_delegate.h"
#include "app/app_services.h"
#include "main/bus_requests.h"
#include "main/command_line.h"
#include "main/doctor.h"
#include "main/outside_requests.h"
#include "main/program.h"
#include "main/qt_user_interface.h"
#include "main/single_instance.h"
#include "main/termination_signals.h"
#include "platform/linux/application_service.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/linux_tray_icon.h"
#include "platform/linux/session_lock.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_platform.h"
#include "ui/common/desktop_looks.h"
#include "ui/common/translation.h"
#include "ui/menu/popup_status_item.h"
#include "ui/windows/about_view.h"

namespace ferrowyn {

namespace {

constexpr std::chrono::seconds patienceWithEnding{10};
/// Long, because the running program may still be starting on a slow machine.
constexpr std::chrono::seconds patienceWithAnswer{5};
/// Another attempt is needed only when the running program ended before it answered.
constexpr int mostAttempts = 5;

int refuse(const std::string& message) {
    std::cerr << message << "\n";
    return exit_status::unusableDesktop;
}

/// A session that restores its programs at the next login would start this one even when the login item is off, or a
/// second time, which opens the setup window.
void stayOutOfRestoredSessions(QApplication& application) {
    const auto refuse = [](QSessionManager& session) { session.setRestartHint(QSessionManager::RestartNever); };
    QObject::connect(&application, &QGuiApplication::saveStateRequest, &application, refuse);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &application, refuse);
}

/// Runs the program in a session that it can work in, as the only one there.
int runAlone(const CommandLine& line, SingleInstance& instance, int& argumentCount, char** arguments) {
    // Otherwise the toolkit might choose Wayland, where this program cannot work.
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    stayOutOfRestoredSessions(application);
    installTranslations(application, QLocale());
    QApplication::setWindowIcon(programIcon());
    QApplication::setDesktopFileName(QString::fromUtf8(applicationId.data(), applicationId.size()));

    const auto desktop = X11Platform::create(
        {.minimumLogLevel = line.logLevel.value_or(LogLevel::standard), .mirrorsLog = line.logLevel.has_value()});
    if (!desktop) {
        return refuse(unreachableDisplayMessage(SessionEnvironment::current()));
    }
    const Platform& platform = desktop->platform();
    // Before anything is drawn.
    DesktopPalette palette;
    const auto appearance = desktop->appearance().subscribe(
        [&palette](const AppearanceSources& sources) { palette.apply(desktopAppearance(sources)); });
    // Before the services log that they are active, because a script that reads the log may end the program then.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    const auto trayIcon = desktop->makeTrayIcon(traySymbol);
    QtUserInterface userInterface(
        platform,
        [&] {
            return std::make_unique<PopupStatusItem>(*trayIcon, platform.texts,
                                                     [&] { return desktop->isComposited(); });
        },
        [] { return formatted(examineSession(FERROWYN_VERSION)); });
    AppDelegate delegate(platform, userInterface);
    desktop->setSettingsPageHandler([&delegate](SettingsPage page) { return delegate.showSettingsPage(page); });
    delegate.applicationDidFinishLaunching();
    OutsideRequests requests(platform, delegate, line);
    const auto service = offerOnBus(platform.mainLoop, requests, SessionLock::Buses::fromEnvironment().session);
    const auto switchingProblem = delegate.services()->switchingHealth().problem().subscribe(
        [&instance](const auto& problem) { instance.tellOthers(problem ? nameOf(*problem) : std::string_view()); });
    const auto listening = instance.listen([&requests](ProgramRequest request) { requests.perform(request); });
    platform.log.write(LogLevel::debug, "ui", "Ferrowyn is running");
    const int status = QApplication::exec();
    delegate.applicationWillTerminate();
    return status;
}

int endRunning(const X11Connection& connection) {
    switch (SingleInstance::endRunning(connection, patienceWithEnding)) {
        case SingleInstance::Ending::ended:
            return exit_status::success;
        case SingleInstance::Ending::nobodyRan:
            std::cerr << notRunningMessage << "\n";
            break;
        case SingleInstance::Ending::stillRuns:
            std::cerr << "ferrowyn: Ferrowyn was asked to quit, but still runs.\n";
            break;
    }
    return exit_status::unusableDesktop;
}

/// Makes this the only program, or passes its request to the running one and returns the exit status.
std::variant<std::unique_ptr<SingleInstance>, int> claimOrAsk(const CommandLine& line,
                                                              std::unique_ptr<X11Connection>& connection) {
    auto answer = SingleInstance::Answer::nobodyRuns;
    // When the running program ends meanwhile, the next attempt gets the claim.
    for (int attempt = 0; attempt < mostAttempts && answer == SingleInstance::Answer::nobodyRuns; ++attempt) {
        if (auto instance = SingleInstance::claim(connection)) {
            return instance;
        }
        answer = SingleInstance::ask(*connection, line.request.value_or(ProgramRequest::openSetup), patienceWithAnswer);
    }
    if (answer != SingleInstance::Answer::heard) {
        return refuse(
            "ferrowyn: Ferrowyn runs on this display, but does not answer; or another program has taken its place.");
    }
    if (!line.request) {
        std::cout << "Ferrowyn is already running on this display.\n";
    }
    return exit_status::success;
}

/// Passes the request over the session bus. Works also where the display cannot be reached (another terminal, a remote
/// shell).
bool askOverBus(ProgramRequest request, int& argumentCount, char** arguments) {
    const auto bus = SessionLock::Buses::fromEnvironment().session;
    const QCoreApplication application(argumentCount, arguments);
    return bus && activateActionOfRunningApplication(*bus, std::string(nameOf(request)));
}

}  // namespace

int runOnX11(const CommandLine& line, int& argumentCount, char** arguments) {
    // When the X server ends, the connection reports it and the program ends in order. Without this, a write to the
    // closed connection would kill it before.
    std::signal(SIGPIPE, SIG_IGN);
    const auto environment = SessionEnvironment::current();
    auto refusal = sessionRefusal(environment);
    auto connection = refusal ? nullptr : X11Connection::open();
    if (!connection) {
        if (line.request && askOverBus(*line.request, argumentCount, arguments)) {
            return exit_status::success;
        }
        return refuse(refusal ? *refusal : unreachableDisplayMessage(environment));
    }
    if (isServerOfWaylandSession(connection->get(), connection->root())) {
        return refuse(waylandMessage());
    }
    if (line.request == ProgramRequest::quit) {
        return endRunning(*connection);
    }
    const auto claimed = claimOrAsk(line, connection);
    const auto* const status = std::get_if<int>(&claimed);
    return status != nullptr
               ? *status
               : runAlone(line, *std::get<std::unique_ptr<SingleInstance>>(claimed), argumentCount, arguments);
}

}  // namespace ferrowyn
