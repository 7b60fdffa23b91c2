#pragma once

#include <gtest/gtest.h>

#include <QProcess>
#include <QString>
#include <string>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn::test {

/// A private session bus, which can be ended and started again at the same address.
class RestartableBus {
public:
    RestartableBus() { start(); }
    ~RestartableBus() { end(); }
    RestartableBus(const RestartableBus&) = delete;
    RestartableBus& operator=(const RestartableBus&) = delete;

    /// As the bus that runs says it, with its identity.
    [[nodiscard]] const std::string& address() const { return address_; }
    void start() {
        const auto socket = QString::fromStdString((folder_.path() / "bus").string());
        daemon_.start("dbus-daemon",
                      {"--session", "--nofork", "--nopidfile", "--address=unix:path=" + socket, "--print-address"});
        ASSERT_TRUE(daemon_.waitForReadyRead(20000)) << "waited for dbus-daemon to say its address";
        address_ = daemon_.readLine().trimmed().toStdString();
    }
    void end() {
        daemon_.terminate();
        daemon_.waitForFinished();
    }

private:
    TemporaryFolder folder_;
    QProcess daemon_;
    std::string address_;
};

}  // namespace ferrowyn::test
