#include "tests/x11/adapter/inventory_fixture.h"

#include <QEventLoop>
#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/x11/xcb_reply.h"

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
      events(X11Connection::open(display.c_str()),
             [this] {
                 snapshots.close(X11DesktopSnapshots::End::connectionLost);
                 isConnectionLost = true;
             }),
      atoms(events.connection()),
      monitor(mainLoop, events, atoms, directory),
      snapshots(mainLoop, monitor),
      inventory(snapshots, monitor.model(), directory, scale),
      observers(monitor.model()),
      control(monitor, atoms, context, log),
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
    std::unique_ptr<InventoryReading> reading;
    // Shared, because the task that sets it may run after a wait that has failed.
    const auto isDone = std::make_shared<bool>(false);
    std::jthread worker([&] {
        reading = inventory.beginReading();
        mainLoop.post([isDone] { *isDone = true; });
    });
    if (!runUntil([&] { return *isDone; })) {
        snapshots.close(X11DesktopSnapshots::End::programEnds);  // or the worker would wait for ever
        throw std::runtime_error("waited for a snapshot of the desktop");
    }
    worker.join();
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

ScriptedManager::ScriptedManager(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no X server at " + display);
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    checkWindow_ = createWindow(-10, -10, 1, 1);
    set(checkWindow_, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &checkWindow_, 1);
    set(root_, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &checkWindow_, 1);
    publishSupported({"_NET_WM_STATE_HIDDEN", "_NET_RESTACK_WINDOW"});
    publishStacking({});
}

ScriptedManager::~ScriptedManager() {
    xcb_disconnect(connection_);
}

void ScriptedManager::publishStacking(const std::vector<xcb_window_t>& windows) {
    set(root_, "_NET_CLIENT_LIST_STACKING", "WINDOW", 32, windows.data(), static_cast<std::uint32_t>(windows.size()));
}

void ScriptedManager::publishActive(xcb_window_t window) {
    set(root_, "_NET_ACTIVE_WINDOW", "WINDOW", 32, &window, 1);
}

void ScriptedManager::publishCurrentDesktop(std::uint32_t desktop) {
    setCardinal(root_, "_NET_CURRENT_DESKTOP", desktop);
}

void ScriptedManager::publishSupported(const std::vector<std::string>& atoms) {
    setAtoms(root_, "_NET_SUPPORTED", atoms);
}

void ScriptedManager::set(xcb_window_t window, const std::string& property, const std::string& type,
                          std::uint8_t format, const void* data, std::uint32_t count) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, atom(property), atom(type), format, count, data);
    synchronize();
}

void ScriptedManager::setCardinal(xcb_window_t window, const std::string& property, std::uint32_t value) {
    set(window, property, "CARDINAL", 32, &value, 1);
}

void ScriptedManager::setAtoms(xcb_window_t window, const std::string& property,
                               const std::vector<std::string>& values) {
    std::vector<xcb_atom_t> atoms;
    for (const auto& value : values) {
        atoms.push_back(atom(value));
    }
    set(window, property, "ATOM", 32, atoms.data(), static_cast<std::uint32_t>(atoms.size()));
}

void ScriptedManager::remove(xcb_window_t window, const std::string& property) {
    xcb_delete_property(connection_, window, atom(property));
    synchronize();
}

void ScriptedManager::die() {
    destroyWindow(checkWindow_);
}

xcb_window_t ScriptedManager::createWindow(int x, int y, int width, int height) {
    const auto window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                      static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                      nullptr);
    synchronize();
    return window;
}

void ScriptedManager::destroyWindow(xcb_window_t window) {
    xcb_destroy_window(connection_, window);
    synchronize();
}

void ScriptedManager::mapWindow(xcb_window_t window) {
    xcb_map_window(connection_, window);
    synchronize();
}

void ScriptedManager::receiveMessages() {
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, root_, XCB_CW_EVENT_MASK, &events);
    synchronize();
}

std::vector<std::string> ScriptedManager::takeMessages() {
    synchronize();
    std::vector<std::string> messages;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_)}) {
        if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE) {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            messages.push_back(nameOf(message.type) + " " + std::to_string(message.window));
        }
    }
    return messages;
}

std::string ScriptedManager::nameOf(xcb_atom_t atom) const {
    const XcbReply<xcb_get_atom_name_reply_t> reply(
        xcb_get_atom_name_reply(connection_, xcb_get_atom_name(connection_, atom), nullptr));
    return reply ? std::string(xcb_get_atom_name_name(reply.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())))
                 : std::string("?");
}

void ScriptedManager::unmapWindow(xcb_window_t window) {
    xcb_unmap_window(connection_, window);
    synchronize();
}

void ScriptedManager::reparentWindow(xcb_window_t window, xcb_window_t parent, int x, int y) {
    xcb_reparent_window(connection_, window, parent, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    synchronize();
}

void ScriptedManager::moveAndResize(xcb_window_t window, const Rect& frame) {
    const std::array<std::int32_t, 4> values{static_cast<std::int32_t>(frame.x), static_cast<std::int32_t>(frame.y),
                                             static_cast<std::int32_t>(frame.width),
                                             static_cast<std::int32_t>(frame.height)};
    xcb_configure_window(connection_, window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    synchronize();
}

xcb_atom_t ScriptedManager::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void ScriptedManager::synchronize() const {
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

RestlessWindow::RestlessWindow(const std::string& display, xcb_window_t window)
    : client_([display, window](const std::stop_token& stop) {
          const auto client = X11Connection::open(display.c_str());
          if (!client) {
              return;
          }
          const X11Atoms atoms(*client);
          for (std::uint32_t turn = 0; !stop.stop_requested(); ++turn) {
              xcb_change_property(client->get(), XCB_PROP_MODE_REPLACE, window, atoms.netWmWindowOpacity,
                                  XCB_ATOM_CARDINAL, 32, 1, &turn);
              xcb_change_property(client->get(), XCB_PROP_MODE_REPLACE, window, atoms.netWmName, atoms.utf8String, 8, 4,
                                  &turn);
              // In step with the server, which would otherwise have more and more to catch up with.
              const XcbReply<xcb_get_input_focus_reply_t> served(
                  xcb_get_input_focus_reply(client->get(), xcb_get_input_focus(client->get()), nullptr));
          }
      }) {}

}  // namespace ferrowyn::x11test
