#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusMessage>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {

/// The program on a desktop with two windows, "Letter" and "Report", and what reaches it from outside: a second start
/// and the calls of the desktop over the bus.
class ApplicationFixture : public testing::Test, protected SwitchingDesk {
protected:
    ApplicationFixture();
    ~ApplicationFixture() override;

    /// Starts the session's bus. A program that the bus starts is the one under test.
    void startBus();

    /// Starts the program and waits until it switches windows; on a bus, until it is reached there too.
    void startProgram(const std::vector<std::string>& arguments = {});

    /// Calls a method of `org.freedesktop.Application` and waits for the answer.
    [[nodiscard]] QDBusMessage call(const QString& method, const QVariantList& arguments) const;
    [[nodiscard]] QDBusMessage activateAction(const QString& action) const;
    [[nodiscard]] QDBusMessage activate() const;
    [[nodiscard]] bool isOnBus() const;

    /// Waits until the panel is on the screen and has the keyboard, which it takes a moment later.
    void waitForSwitcher();
    /// The program ends by itself, with the status of success.
    void expectEnd();
    /// No client holds the keyboard, and the window manager has its own Alt+Tab back.
    void expectKeyboardIsBack();

    /// Waits until the condition holds, looking again every few milliseconds: for what no event tells of.
    [[nodiscard]] bool poll(const std::function<bool()>& condition);

    std::unique_ptr<PrivateBus> bus;

private:
    int argumentCount_ = 0;
    QCoreApplication application_{argumentCount_, nullptr};
};

}  // namespace ferrowyn::x11test
