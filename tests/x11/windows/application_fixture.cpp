#include "tests/x11/windows/application_fixture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <algorithm>

namespace ferrowyn::x11test {

namespace {

constexpr const char* connectionName = "application-test";
constexpr const char* serviceName = "com.larkmoor.ferrowyn";
constexpr const char* objectPath = "/com/larkmoor/ferrowyn";
constexpr int answerPatience = 30000;

}  // namespace

ApplicationFixture::ApplicationFixture() {
    for (const char* const title : {"Letter", "Report"}) {
        windows.push_back(std::make_unique<TestWindow>(server.display(), TestWindow::Options{.title = title}));
        EXPECT_TRUE(desktop.waitForActiveWindow(windows.back()->id())) << "waited for " << title;
    }
}

ApplicationFixture::~ApplicationFixture() {
    QDBusConnection::disconnectFromBus(connectionName);
}

void ApplicationFixture::startBus() {
    server.home().write(".local/share/dbus-1/services/com.larkmoor.ferrowyn.service",
                        std::string("[D-BUS Service]\nName=com.larkmoor.ferrowyn\nExec=" FERROWYN_PROGRAM
                                    " --dbus-service --log-level=debug\n"));
    bus = std::make_unique<PrivateBus>(server);
    const auto connection = QDBusConnection::connectToBus(QString::fromStdString(bus->address()), connectionName);
    ASSERT_TRUE(connection.isConnected());
}

std::map<std::string, std::string> ApplicationFixture::environment() const {
    auto variables = server.clientEnvironment();
    if (bus) {
        variables["DBUS_SESSION_BUS_ADDRESS"] = bus->address();
    }
    return variables;
}

void ApplicationFixture::startProgram(const std::vector<std::string>& arguments) {
    FerrowynProgram::Options options{.environment = environment()};
    options.arguments.insert(options.arguments.end(), arguments.begin(), arguments.end());
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
    ASSERT_TRUE(program->waitUntilActive()) << "waited for the services; it said: " << program->process().output();
    ASSERT_TRUE(program->waitForList(2, windows.back()->id())) << program->process().output();
    ASSERT_TRUE(program->process().waitForOutput("Ferrowyn is running"));
    if (bus) {
        ASSERT_TRUE(poll([&] { return isOnBus(); })) << "waited for the program's name on the bus";
    }
}

ApplicationFixture::Result ApplicationFixture::run(const std::vector<std::string>& arguments,
                                                   const std::map<std::string, std::string>& environment) {
    ChildProcess::Options options{.command = {FERROWYN_PROGRAM}, .environment = environment};
    options.command.insert(options.command.end(), arguments.begin(), arguments.end());
    ChildProcess process(options);
    const auto status = process.waitForExit();
    return {status, process.output()};
}

QDBusMessage ApplicationFixture::call(const QString& method, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(serviceName, objectPath, "org.freedesktop.Application", method);
    message.setArguments(arguments);
    return QDBusConnection(connectionName).call(message, QDBus::Block, answerPatience);
}

QDBusMessage ApplicationFixture::activateAction(const QString& action) const {
    return call("ActivateAction", {action, QVariantList(), QVariantMap()});
}

QDBusMessage ApplicationFixture::activate() const {
    return call("Activate", {QVariantMap()});
}

bool ApplicationFixture::isOnBus() const {
    return QDBusConnection(connectionName).interface()->isServiceRegistered(serviceName).value();
}

std::optional<xcb_window_t> ApplicationFixture::waitForWindow(const std::string& title) {
    static_cast<void>(desktop.waitUntil([&] { return findWindow(title).has_value(); }));
    return findWindow(title);
}

bool ApplicationFixture::poll(const std::function<bool()>& condition) {
    const Deadline deadline(patience);
    while (!condition()) {
        if (deadline.hasPassed()) {
            return false;
        }
        static_cast<void>(desktop.waitUntil([] { return false; }, milliseconds{10}));
    }
    return true;
}

void ApplicationFixture::waitForSwitcher() {
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel";
    ASSERT_TRUE(poll([&] { return !desktop.keyboardIsFree(); })) << "waited for the panel to have the keyboard";
}

void ApplicationFixture::expectEnd() {
    EXPECT_EQ(program->process().waitForExit(), 0) << program->process().output();
}

bool ApplicationFixture::isShownUnmanaged(const std::string& title) const {
    return std::ranges::any_of(desktop.shownTopLevels(),
                               [&](xcb_window_t window) { return desktop.text(window, "_NET_WM_NAME") == title; });
}

void ApplicationFixture::expectKeyboardIsBack() {
    EXPECT_FALSE(desktop.visiblePanel());
    input.releaseAll();
    const auto active = desktop.activeWindow();
    const auto shownBefore = desktop.shownTopLevels().size();
    input.press(key::leftAlt);
    input.tap(key::tab);
    // It misses a release of Alt that comes while it is about to take the keyboard for its popup.
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels().size() > shownBefore; }))
        << "waited for the window manager's own switching";
    input.release(key::leftAlt);
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.activeWindow() != active; }))
        << "waited for the window manager to switch";
    EXPECT_TRUE(poll([&] { return desktop.keyboardIsFree(); }));
}

}  // namespace ferrowyn::x11test
