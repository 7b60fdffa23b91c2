#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusMessage>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

/// The program on a private desktop with two windows, asked for things from outside as a person and a desktop ask.
class ApplicationFixture : public testing::Test {
protected:
    ApplicationFixture();
    ~ApplicationFixture() override;

    /// From now on, the session has a bus. Programs that the bus starts are this one.
    void startBus();
    [[nodiscard]] std::map<std::string, std::string> environment() const;

    /// Starts the program and waits until it switches windows; on a bus, until it is reached there too.
    void startProgram(const std::vector<std::string>& arguments = {});
    struct Result {
        std::optional<int> status;
        std::string output;
    };
    /// Another start of the program, until it ends.
    [[nodiscard]] Result run(const std::vector<std::string>& arguments) { return run(arguments, environment()); }
    [[nodiscard]] static Result run(const std::vector<std::string>& arguments,
                                    const std::map<std::string, std::string>& environment);

    /// Calls a method of `org.freedesktop.Application` and waits for the answer.
    [[nodiscard]] QDBusMessage call(const QString& method, const QVariantList& arguments) const;
    [[nodiscard]] QDBusMessage activateAction(const QString& action) const;
    [[nodiscard]] QDBusMessage activate() const;
    [[nodiscard]] bool isOnBus() const;

    /// The program's window with this title, once it is on the screen.
    [[nodiscard]] std::optional<xcb_window_t> waitForWindow(const std::string& title);
    [[nodiscard]] std::optional<xcb_window_t> findWindow(const std::string& title) const {
        return desktop.windowTitled(title);
    }
    /// The same where no window manager keeps a list.
    [[nodiscard]] bool isShownUnmanaged(const std::string& title) const;
    /// Until the panel is on the screen and has the keyboard, which it takes a moment later.
    void waitForSwitcher();
    void expectEnd();
    /// No client holds the keyboard, and the window manager has its own Alt+Tab back.
    void expectKeyboardIsBack();

    /// For what no event tells of.
    [[nodiscard]] bool poll(const std::function<bool()>& condition);

    PrivateXServer server;
    WindowManagerProcess manager{server, "openbox"};
    TestDesktop desktop{server.display()};
    TestInput input{server.display()};
    std::vector<std::unique_ptr<TestWindow>> windows;
    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<FerrowynProgram> program;

private:
    int argumentCount_ = 0;
    QCoreApplication application_{argumentCount_, nullptr};
};

}  // namespace ferrowyn::x11test
