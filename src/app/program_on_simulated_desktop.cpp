#include <QApplication>
#include <QTimer>
#include <chrono>

#include "app/app_services.h"
#include "app/demo_desktop.h"
#include "app/program.h"
#include "app/termination_signals.h"
#include "platform/linux/journal_log.h"
#include "platform/simulated/simulated_desktop.h"
#include "ui/switcher_content.h"

namespace ferrowyn {

namespace {

/// How often the simulated clock catches up with the real one.
constexpr std::chrono::milliseconds tick{10};

/// The same desktop with the real log.
Platform withLog(const Platform& platform, Log& log) {
    return {
        .mainLoop = platform.mainLoop,
        .backgroundWork = platform.backgroundWork,
        .log = log,
        .userDefaults = platform.userDefaults,
        .application = platform.application,
        .workspace = platform.workspace,
        .windowInventory = platform.windowInventory,
        .accessibilityObservers = platform.accessibilityObservers,
        .windowControl = platform.windowControl,
        .trust = platform.trust,
        .eventTaps = platform.eventTaps,
        .screens = platform.screens,
        .pointer = platform.pointer,
        .panel = platform.panel,
        .icons = platform.icons,
        .httpClient = platform.httpClient,
        .loginItem = platform.loginItem,
        .texts = platform.texts,
    };
}

}  // namespace

int runOnSimulatedDesktop(const CommandLine& line, int& argumentCount, char** arguments) {
    // There may be no display at all.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);

    JournalLog log = makeLog(line);
    SimulatedDesktop desktop;
    openDemoWindows(desktop);
    const Platform platform = withLog(desktop.platform(), log);
    // Before the services say that they are active: who reads that may end the program at once.
    const TerminationSignals terminationSignals([] { QCoreApplication::quit(); });
    AppServices services(platform, switcherContentFactory(platform.texts));

    auto last = std::chrono::steady_clock::now();
    QTimer clock;
    QObject::connect(&clock, &QTimer::timeout, &clock, [&] {
        const auto now = std::chrono::steady_clock::now();
        desktop.advance(now - last);
        last = now;
    });
    clock.start(tick);
    const int status = QApplication::exec();
    services.terminate();
    return status;
}

}  // namespace ferrowyn
