#include <QApplication>
#include <QLocale>
#include <iostream>
#include <memory>

#include "app/app_delegate.h"
#include "main/command_line.h"
#include "main/mac_application_events.h"
#include "main/other_instance.h"
#include "main/program.h"
#include "main/program_log.h"
#include "main/qt_user_interface.h"
#include "main/termination_signals.h"
#include "platform/log.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_platform.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_system_looks.h"
#include "platform/qt/curl_http_client.h"
#include "platform/qt/qt_hosted_widget.h"
#include "platform/qt/qt_main_loop.h"
#include "ui/common/desktop_looks.h"
#include "ui/common/translation.h"
#include "ui/panel/visual_effect_background.h"

namespace ferrowyn {

namespace {

/// In the order of construction: each may use those above it.
struct Desktop {
    explicit Desktop(const CommandLine& line)
        : log(makeProgramLog(line)),
          httpClient(mainLoop, backgroundWork),
          adapter({.mainLoop = mainLoop,
                   .backgroundWork = backgroundWork,
                   .httpClient = httpClient,
                   .log = *log,
                   .hostWidget = hostQtWidget,
                   .panelCornerRadius = VisualEffectBackground::cornerRadius}) {}

    QtMainLoop mainLoop;
    std::unique_ptr<Log> log;
    CurlHttpClient httpClient;
    MacPlatform adapter;
    /// The members above get a reference before it is constructed, and only store it. It is destroyed first, and waits
    /// then for a snapshot that still uses the adapter.
    QtBackgroundWork backgroundWork;
};

}  // namespace

int runOnMacOS(const CommandLine& line, int& argumentCount, char** arguments) {
    AppDelegate* currentDelegate = nullptr;
    const auto events = passingOnTo(currentDelegate);
    const MacApplicationDelegate systemDelegate(events);
    // Without this, the toolkit would put a program that is not in a bundle into the Dock and in front. The program
    // starts in the menu bar only and sets its own policy.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    installTranslations(application, QLocale());

    const Desktop desktop(line);
    const Platform& platform = desktop.adapter.platform();
    if (isRunningElsewhere(platform)) {
        std::cout << "Ferrowyn is already running.\n";
        return exit_status::success;
    }
    // Before the services log that they are active, because a script that reads the log may end the program then.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    QtUserInterface userInterface(
        platform, [] { return std::make_unique<MacStatusItem>(); }, nullptr, configureUtilityWindow);
    const MacSystemLooks looks;
    const SystemLooksInUse looksInUse(looks);
    AppDelegate delegate(platform, userInterface);
    currentDelegate = &delegate;
    // After the toolkit's application object, which makes a menu too.
    const auto applicationMenu = makeApplicationMenu(userInterface, platform.texts, currentDelegate);
    // The system reports the launch when the loop begins. The program reports it too, so that it starts even when the
    // toolkit does not pass that event on.
    platform.mainLoop.post(events.onDidFinishLaunching);
    const int status = QApplication::exec();
    // The toolkit ends its loop without an event of the system.
    events.onWillTerminate();
    currentDelegate = nullptr;
    return status;
}

}  // namespace ferrowyn
