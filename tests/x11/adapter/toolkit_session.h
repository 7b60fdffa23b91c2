#pragma once

#include <QApplication>
#include <functional>
#include <memory>
#include <string>

#include "tests/x11/harness/desktop_session.h"
#include "tests/x11/harness/toolkit_wait.h"

namespace ferrowyn::x11test {

/// A desktop session with the toolkit's application in the test's own process, for the parts of the adapter that need
/// no program around them.
class ToolkitSession : public DesktopSession {
public:
    /// `scale` is what the toolkit draws at, as in QT_SCALE_FACTOR.
    ToolkitSession(const std::string& managerName, const Options& options, const std::string& scale)
        : DesktopSession(managerName, options) {
        qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
        qputenv("QT_QPA_PLATFORM", "xcb");
        qputenv("QT_SCALE_FACTOR", QByteArray::fromStdString(scale));
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
        application = std::make_unique<QApplication>(argumentCount_, arguments_);
    }

    /// Runs the toolkit's loop until the predicate holds; false when it does not within the harness's patience.
    [[nodiscard]] static bool runUntil(const std::function<bool()>& predicate) { return runToolkitUntil(predicate); }

private:
    int argumentCount_ = 1;
    char name_[9] = "ferrowyn";
    char* arguments_[2] = {name_, nullptr};

public:
    std::unique_ptr<QApplication> application;
};

}  // namespace ferrowyn::x11test
