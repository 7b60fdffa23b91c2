#include "tests/x11/inventory_fixture.h"

#include <QEventLoop>

#include <algorithm>

namespace ferrowyn::x11test {

namespace {

QCoreApplication& sharedApplication() {
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    static QCoreApplication application(count, arguments);
    return application;
}

}  // namespace

AdapterParts::AdapterParts(const std::string& display)
    : qtApplication(sharedApplication()),
      directory(nullptr),
      eventConnection_(X11Connection::open(display.c_str())),
      atoms(*eventConnection_),
      monitor(mainLoop, std::move(eventConnection_), atoms, directory, history, [this] { isConnectionLost = true; }),
      reader(X11Connection::open(display.c_str()), atoms),
      inventory(reader, monitor.model(), directory, history, scale),
      observers(monitor.model()),
      control(mainLoop, monitor, atoms, context, log),
      workspace(monitor, {}) {}

bool AdapterParts::runUntil(const std::function<bool()>& predicate, milliseconds budget) {
    const Deadline deadline(budget);
    QEventLoop loop;
    // The loop wakes for every event; the timer only ends a wait that has failed.
    const auto limit = mainLoop.after(std::chrono::duration<double>(budget), [] {});
    while (!predicate()) {
        if (deadline.hasPassed()) {
            return false;
        }
        loop.processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

bool AdapterParts::runUntilKnown(xcb_window_t window) {
    return runUntil([&] { return monitor.model().find(window) != nullptr; });
}

std::unique_ptr<X11InventoryReading> AdapterParts::read() {
    auto reading = inventory.beginReading();
    return std::unique_ptr<X11InventoryReading>(dynamic_cast<X11InventoryReading*>(reading.release()));
}

std::optional<AccessibleWindow> AdapterParts::accessibleWindow(xcb_window_t window) {
    const auto reading = read();
    for (const auto& application : reading->runningApplications()) {
        const auto windows = reading->windowsOf(application.pid, Seconds(1));
        if (!windows) {
            continue;
        }
        const auto found =
            std::ranges::find(windows->windows, std::optional<WindowId>(window), &AccessibleWindow::windowNumber);
        if (found != windows->windows.end()) {
            return *found;
        }
    }
    return std::nullopt;
}

std::optional<WindowServerEntry> AdapterParts::listedWindow(xcb_window_t window) {
    const auto list = read()->windowList();
    if (!list) {
        return std::nullopt;
    }
    const auto found = std::ranges::find(*list, std::optional<WindowId>(window), &WindowServerEntry::id);
    return found == list->end() ? std::nullopt : std::optional(*found);
}

std::string nameOf(WorkspaceEvent::Kind kind) {
    switch (kind) {
        case WorkspaceEvent::Kind::didLaunch:
            return "didLaunch";
        case WorkspaceEvent::Kind::didTerminate:
            return "didTerminate";
        case WorkspaceEvent::Kind::didActivate:
            return "didActivate";
        case WorkspaceEvent::Kind::didHide:
            return "didHide";
        case WorkspaceEvent::Kind::didUnhide:
            return "didUnhide";
        case WorkspaceEvent::Kind::activeSpaceDidChange:
            return "activeSpaceDidChange";
        case WorkspaceEvent::Kind::screenParametersDidChange:
            return "screenParametersDidChange";
    }
    return "?";
}

}  // namespace ferrowyn::x11test
