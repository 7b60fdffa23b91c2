#include "platform/linux/session_lock.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/bus_thread.h"
#include "platform/linux/session_lock_listener.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

std::optional<std::string> busAddress(const char* variable, const std::filesystem::path& socket) {
    if (const char* address = std::getenv(variable); address != nullptr && *address != '\0') {
        return address;
    }
    std::error_code error;
    return std::filesystem::is_socket(socket, error) ? std::optional("unix:path=" + socket.string()) : std::nullopt;
}

}  // namespace

SessionLock::Buses SessionLock::Buses::fromEnvironment() {
    const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
    return {
        busAddress("DBUS_SYSTEM_BUS_ADDRESS", "/run/dbus/system_bus_socket"),
        busAddress("DBUS_SESSION_BUS_ADDRESS",
                   std::filesystem::path(runtimeFolder == nullptr ? "" : runtimeFolder) / "bus"),
    };
}

SessionLock::SessionLock(MainLoop& mainLoop, const Buses& buses, std::function<void()> onLocking) {
    if (!buses.system && !buses.session) {
        return;
    }
    // What the listener posts may arrive after this object is gone.
    const std::weak_ptr<bool> alive = alive_;
    auto* const listener = new SessionLockListener(
        buses,
        [this, &mainLoop, alive](bool isLocked) {
            mainLoop.post([this, alive, isLocked] {
                if (!alive.expired()) {
                    setLocked(isLocked);
                }
            });
        },
        std::move(onLocking));
    thread_ = std::make_unique<BusThread>("ferrowyn-lock", listener, [listener] { listener->start(); });
}

SessionLock::~SessionLock() = default;

Subscription SessionLock::observe(std::function<void(bool)> handler) const {
    return changes_.subscribe([handler = std::move(handler)](const bool& isLocked) { handler(isLocked); });
}

void SessionLock::setLocked(bool isLocked) {
    isLocked_ = isLocked;
    changes_.send(isLocked);
}

}  // namespace ferrowyn
