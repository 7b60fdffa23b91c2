#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <QCoreApplication>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/qt/qt_main_loop.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_trust.h"
#include "platform/x11/x11_window_control.h"
#include "platform/x11/x11_window_inventory.h"
#include "platform/x11/x11_workspace.h"
#include "tests/platform/recorded_log.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

/// The adapter without keyboard and panel, on a private display.
class AdapterParts {
public:
    explicit AdapterParts(const std::string& display);
    ~AdapterParts() { snapshots.close(X11DesktopSnapshots::End::programEnds); }
    AdapterParts(const AdapterParts&) = delete;
    AdapterParts& operator=(const AdapterParts&) = delete;

    /// Runs the main loop until the predicate holds; false when it does not within the harness's patience.
    [[nodiscard]] bool runUntil(const std::function<bool()>& predicate, milliseconds budget = patience);
    [[nodiscard]] bool runUntilKnown(xcb_window_t window);
    /// A fresh reading, as a snapshot worker takes one, while the main loop runs here.
    [[nodiscard]] std::unique_ptr<X11InventoryReading> read();
    /// The window as its application's part of a fresh reading describes it.
    [[nodiscard]] std::optional<AccessibleWindow> accessibleWindow(xcb_window_t window);
    /// The window as a fresh reading's window list describes it.
    [[nodiscard]] std::optional<WindowServerEntry> listedWindow(xcb_window_t window);

    QCoreApplication& qtApplication;
    QtMainLoop mainLoop;
    RecordedLog log;
    X11InputContext context;
    std::atomic<double> scale{1.0};
    bool isConnectionLost = false;
    X11ApplicationDirectory directory;
    X11EventConnection events;
    X11Atoms atoms;
    X11DesktopMonitor monitor;
    X11DesktopSnapshots snapshots;
    X11WindowInventory inventory;
    X11AccessibilityObservers observers;
    X11WindowControl control;
    X11Workspace workspace;
};

/// As a short text, for comparing sequences.
[[nodiscard]] std::string nameOf(WorkspaceEvent::Kind kind);

/// Says on the root window what a window manager says, as the test tells it to: for states that no real manager shows
/// on demand. It manages nothing.
class ScriptedManager {
public:
    explicit ScriptedManager(const std::string& display);
    ~ScriptedManager();
    ScriptedManager(const ScriptedManager&) = delete;
    ScriptedManager& operator=(const ScriptedManager&) = delete;

    /// Bottom-most first.
    void publishStacking(const std::vector<xcb_window_t>& windows);
    void publishActive(xcb_window_t window);
    void publishCurrentDesktop(std::uint32_t desktop);
    void publishSupported(const std::vector<std::string>& atoms);
    /// Any property of any window.
    void set(xcb_window_t window, const std::string& property, const std::string& type, std::uint8_t format,
             const void* data, std::uint32_t count);
    void setCardinal(xcb_window_t window, const std::string& property, std::uint32_t value);
    void setAtoms(xcb_window_t window, const std::string& property, const std::vector<std::string>& values);
    void remove(xcb_window_t window, const std::string& property);
    void removeFromRoot(const std::string& property) { remove(root_, property); }
    /// The check window goes, as when the manager is killed; the properties on the root stay.
    void die();
    /// An unmapped window of this client, as plain as can be.
    [[nodiscard]] xcb_window_t createWindow(int x = 0, int y = 0, int width = 200, int height = 100);
    void destroyWindow(xcb_window_t window);
    void mapWindow(xcb_window_t window);
    /// From now on the requests of other clients to the manager come here.
    void receiveMessages();
    /// What has come since, as "_NET_ACTIVE_WINDOW 7" with the window's XID.
    [[nodiscard]] std::vector<std::string> takeMessages();
    void unmapWindow(xcb_window_t window);
    void reparentWindow(xcb_window_t window, xcb_window_t parent, int x, int y);
    /// In the parent's coordinates.
    void moveAndResize(xcb_window_t window, const Rect& frame);
    [[nodiscard]] xcb_window_t root() const { return root_; }
    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

private:
    void synchronize() const;
    [[nodiscard]] std::string nameOf(xcb_atom_t atom) const;

    xcb_connection_t* connection_;
    xcb_window_t root_;
    xcb_window_t checkWindow_;
};

/// A client that changes the opacity and the title of a window as fast as the server serves it, until this is
/// destroyed.
class RestlessWindow {
public:
    RestlessWindow(const std::string& display, xcb_window_t window);

private:
    std::jthread client_;
};

}  // namespace ferrowyn::x11test
