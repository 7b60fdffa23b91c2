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

/// In the order in which they need each other.
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
    /// Handed to what stands above before it is made, which only keeps it in mind, and gone before that goes: it waits
    /// for a snapshot that is still being read with the adapter.
    QtBackgroundWork backgroundWork;
};

}  // namespace

int runOnMacOS(const CommandLine& line, int& argumentCount, char** arguments) {
    AppDelegate* told = nullptr;
    const auto events = passingOnTo(told);
    const MacApplicationDelegate systemDelegate(events);
    // The toolkit would give the program a place in the Dock and bring it to the front, where it is no bundle: it
    // starts silently in the menu bar, and its policy is its own.
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
    // Before the services say that they are active: who reads that may end the program at once.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    QtUserInterface userInterface(
        platform, [] { return std::make_unique<MacStatusItem>(); }, nullptr, configureUtilityWindow);
    const MacSystemLooks looks;
    const SystemLooksInUse looksInUse(looks);
    AppDelegate delegate(platform, userInterface);
    told = &delegate;
    // After the toolkit's own application object, which brings a menu of its own.
    const auto applicationMenu = makeApplicationMenu(userInterface, platform.texts, told);
    // The system tells of the launch when the loop begins. Whatever becomes of that between it and the toolkit, the
    // program must not sit there without a sign of itself.
    platform.mainLoop.post(events.onDidFinishLaunching);
    const int status = QApplication::exec();
    // The toolkit ends its loop without the system's knowing.
    events.onWillTerminate();
    told = nullptr;
    return status;
}

}  // namespace ferrowyn
