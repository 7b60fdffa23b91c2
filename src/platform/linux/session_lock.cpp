#include "platform/linux/session_lock.h"

#include <QThread>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/session_lock_listener.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

/// Milliseconds.
constexpr unsigned long patienceWithBuses = 1000;

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

/// The listener's thread with the listener on it.
class SessionLock::Thread {
public:
    Thread(const Buses& buses, SessionLockListener::Told told)
        : thread_(std::make_unique<QThread>()), listener_(new SessionLockListener(buses, std::move(told))) {
        thread_->setObjectName("ferrowyn-lock");
        listener_->moveToThread(thread_.get());
        QObject::connect(thread_.get(), &QThread::started, listener_, &SessionLockListener::start);
        QObject::connect(thread_.get(), &QThread::finished, listener_, &QObject::deleteLater);
        thread_->start(QThread::LowPriority);
    }
    ~Thread() {
        thread_->quit();
        if (!thread_->wait(patienceWithBuses)) {
            // It still waits for a bus that does not answer. The program is ending: better it ends without it.
            static_cast<void>(thread_.release());
        }
    }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

private:
    std::unique_ptr<QThread> thread_;
    /// Deleted on its own thread, when that ends.
    SessionLockListener* listener_;
};

SessionLock::SessionLock(MainLoop& mainLoop, const Buses& buses) {
    if (!buses.system && !buses.session) {
        return;
    }
    // What the listener posts may arrive after this object is gone.
    const std::weak_ptr<bool> alive = alive_;
    thread_ = std::make_unique<Thread>(buses, [this, &mainLoop, alive](bool isLocked) {
        mainLoop.post([this, alive, isLocked] {
            if (!alive.expired()) {
                setLocked(isLocked);
            }
        });
    });
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
