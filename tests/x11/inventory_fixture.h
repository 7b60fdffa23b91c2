#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/qt/qt_main_loop.h"
#include "platform/x11/x11_accessibility_observers.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_desktop_reader.h"
#include "platform/x11/x11_element.h"
#include "platform/x11/x11_inventory_reading.h"
#include "platform/x11/x11_trust.h"
#include "platform/x11/x11_window_control.h"
#include "platform/x11/x11_window_inventory.h"
#include "platform/x11/x11_workspace.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"
#include "tests/x11/harness/window_manager_process.h"

namespace ferrowyn::x11test {

/// Remembers what was logged.
class RememberingLog final : public Log {
public:
    void write(LogLevel /*level*/, std::string_view category, std::string_view message) override {
        lines.push_back(std::string(category) + ": " + std::string(message));
    }
    std::vector<std::string> lines;
};

/// The adapter without keyboard and panel, on a display of the test's own.
class AdapterParts {
public:
    explicit AdapterParts(const std::string& display);

    /// Runs the main loop until the predicate holds; false when it does not within the harness's patience.
    [[nodiscard]] bool runUntil(const std::function<bool()>& predicate, milliseconds budget = patience);
    [[nodiscard]] bool runUntilKnown(xcb_window_t window);
    /// A fresh reading, as a snapshot worker takes one.
    [[nodiscard]] std::unique_ptr<X11InventoryReading> read();
    /// The window as its application's part of a fresh reading describes it.
    [[nodiscard]] std::optional<AccessibleWindow> accessibleWindow(xcb_window_t window);
    /// The window as a fresh reading's window list describes it.
    [[nodiscard]] std::optional<WindowServerEntry> listedWindow(xcb_window_t window);

    QCoreApplication& qtApplication;
    QtMainLoop mainLoop;
    RememberingLog log;
    X11InputContext context;
    std::atomic<double> scale{1.0};
    bool isConnectionLost = false;
    X11FocusHistory history;
    X11ApplicationDirectory directory;

private:
    std::unique_ptr<X11Connection> eventConnection_;

public:
    X11Atoms atoms;
    X11DesktopMonitor monitor;
    X11DesktopReader reader;
    X11WindowInventory inventory;
    X11AccessibilityObservers observers;
    X11WindowControl control;
    X11Workspace workspace;
};

/// As a short text, for comparing sequences.
[[nodiscard]] std::string nameOf(WorkspaceEvent::Kind kind);

}  // namespace ferrowyn::x11test
